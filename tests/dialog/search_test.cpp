// The search tab, driven through its controls.
#include <algorithm>

#include "controls/peer.h"
#include "platform/headless/recording_peer.h"
#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::dialog_test {
namespace {

Strings SortedNames(const controls::AutoSelect& list) {
  Strings names;
  for (std::size_t number = 1; number <= list.Count(); ++number) names.emplace_back(list.At(number).name);
  std::sort(names.begin(), names.end());
  return names;
}

class SearchTab : public DialogTest {
 protected:
  enum Button { kApply, kClear, kFind, kSelectAll };

  void LoadSearch() {
    MakeCatalog({Row(1, 1, "001", "C:\\a.doc"), Row(2, 1, "002", "C:\\a.doc"), Row(3, 1, "003", "C:\\b.doc"),
                 Row(4, 2, "001", "D:\\a.doc"), Row(5, 2, "001", "D:\\c.xls")});
    ui().tbsOptions.UserSelect(2);
  }
  void Find(const std::string& mask) {
    ui().cboMask.UserType(mask);
    ui().cmdSearch[kFind].UserClick();
  }
  Strings Found(const std::string& mask) {
    Find(mask);
    return SortedNames(ui().asSearch);
  }
};

TEST_F(SearchTab, FindsByMaskAndRemembersIt) {
  LoadSearch();
  EXPECT_EQ(Found("*.doc"), (Strings{"C:\\a.doc", "C:\\a.doc", "C:\\b.doc", "D:\\a.doc"}));
  EXPECT_EQ(ui().lblSearchCount.Caption(), "4 File(s)");
  EXPECT_EQ(Found("c.x"), Strings{"D:\\c.xls"});
  EXPECT_EQ(Found("*.doc").size(), 4u);
  EXPECT_EQ(Found("*.DOC").size(), 4u);
  EXPECT_EQ(ui().cboMask.Items(), (Strings{"*.doc", "c.x", "*.DOC"}));

  ui().chk1.UserClick();
  EXPECT_EQ(Found("*.doc"), (Strings{"C:\\a.doc", "C:\\b.doc", "D:\\a.doc"}));
  EXPECT_EQ(Found("nothing like it"), Strings{});
  EXPECT_EQ(ui().lblSearchCount.Caption(), "0 File(s)");
  EXPECT_EQ(TakeMessages(), Strings{});
  EXPECT_EQ(ui().form.MousePointer(), controls::MousePointer::kDefault);
}

TEST_F(SearchTab, AnEntryCarriesItsRow) {
  auto row = Row(7, 2, "001", "C:\\a.doc");
  row.filename = "C:\\A~1.DOC";
  row.origSize.reset();
  MakeCatalog({row});
  ui().tbsOptions.UserSelect(2);
  Find("a");
  ASSERT_EQ(ui().asSearch.Count(), 1u);
  const auto entry = ui().asSearch.At(1);
  EXPECT_EQ(entry.name, "C:\\a.doc");
  EXPECT_EQ(entry.storedName, "C:\\A~1.DOC");
  EXPECT_FALSE(entry.sizeKnown);
  EXPECT_EQ(entry.extension, "001");
  EXPECT_EQ(entry.setId, 2);
  EXPECT_EQ(entry.setName, "Set 2");
  EXPECT_EQ(entry.time, platform::TimeNumber({2026, 3, 1, 10, 0, 0}));
  EXPECT_FALSE(ui().asSearch.TickedAt(1));
}

TEST_F(SearchTab, AnEmptyMaskIsAskedForAndChangesNothing) {
  LoadSearch();
  platform::PeerLog log;
  platform::Record(ui().cboMask, log);
  Find("*.doc");
  Find("");
  ASSERT_EQ(desktop.messages.size(), 1u);
  EXPECT_EQ(desktop.messages[0].style, 0);
  EXPECT_EQ(TakeMessages(), Strings{": No Search String Defined."});
  EXPECT_EQ(log.focused, 1);
  EXPECT_EQ(ui().asSearch.Count(), 4u);
  EXPECT_EQ(ui().lblSearchCount.Caption(), "4 File(s)");
  EXPECT_EQ(ui().cboMask.Items(), Strings{"*.doc"});
}

TEST_F(SearchTab, ThisSetIsTheSetOrTheRunsUpToTheChosenOne) {
  LoadSearch();
  ChooseSet("Set 1");  // chooses "This Set" as well
  ui().tbsOptions.UserSelect(2);
  EXPECT_EQ(Found("a"), (Strings{"C:\\a.doc", "C:\\a.doc"}));
  EXPECT_EQ(Found("doc"), (Strings{"C:\\a.doc", "C:\\a.doc", "C:\\b.doc"}));

  ChooseRun("1 002");  // covers 001 too
  EXPECT_EQ(Found("doc"), (Strings{"C:\\a.doc", "C:\\a.doc"}));
  ui().optLookIn[1].UserClick();
  EXPECT_EQ(Found("doc").size(), 4u) << "all sets know no runs";
  ui().optLookIn[0].UserClick();
  ui().chk1.UserClick();
  EXPECT_EQ(Found("doc"), Strings{"C:\\a.doc"});

  ui().tvwSets.UserClickNode(ui().tvwSets.Item(1));
  EXPECT_EQ(Found("doc").size(), 3u);
  EXPECT_EQ(TakeMessages(), Strings{});
}

TEST_F(SearchTab, ApplyMarksTheTickedEntries) {
  LoadSearch();
  ChooseSet("Set 1");
  ui().optLookIn[1].UserClick();
  Find("a.doc");
  for (std::size_t number = 1; number <= ui().asSearch.Count(); ++number) {
    const auto entry = ui().asSearch.At(number);
    if (entry.name == "D:\\a.doc" || entry.extension == "002") ui().asSearch.UserTick(number, true);
  }
  ui().cmdSearch[kApply].UserClick();
  EXPECT_EQ(catalog->Marked(), (Ids{2, 4}));
  EXPECT_EQ(SortedNames(ui().asRestoreList), (Strings{"C:\\a.doc", "D:\\a.doc"}));
  EXPECT_EQ(ui().lblCounts[0].Caption(), "2 file(s) selected");
  EXPECT_EQ(ui().lblSearchCount.Caption(), "3 File(s)");

  ui().optLookIn[0].UserClick();
  EXPECT_EQ(Found("doc").size(), 3u) << "this set is still the set chosen in the tree";

  ui().cmdSearch[kSelectAll].UserClick();
  EXPECT_FALSE(ui().asSearch.TickedAt(1));
  ui().cmdSearch[kClear].UserClick();
  EXPECT_EQ(ui().asSearch.Count(), 0u);
  EXPECT_EQ(ui().lblSearchCount.Caption(), "0 File(s)");
  EXPECT_EQ(TakeMessages(), Strings{});
}

TEST_F(SearchTab, ApplyWithoutATickMarksNothingAndCountsToTheEnd) {
  auto marked = Live(9, "X:\\marked.txt");
  marked.restore = true;
  MakeCatalog({Live(1, "C:\\a.doc"), Live(2, "C:\\b.doc"), marked});
  ui().tbsOptions.UserSelect(2);
  Find(".doc");
  Strings captions;
  desktop.onDoEvents = [&] { captions.push_back(ui().lblSearchCount.Caption()); };
  catalog->Execute("UPDATE Catalog SET Restore = 1 WHERE ID = 1");
  ui().cmdSearch[kApply].UserClick();
  EXPECT_EQ(captions, (Strings{"2 File(s)", "Scanning 1", "Scanning 2", "Scanning 2"}))
      << "once before each entry and before each row of the restore list";
  EXPECT_EQ(catalog->Marked(), (Ids{1, 9}));
  EXPECT_EQ(ui().asRestoreList.Count(), 2u);
}

TEST_F(SearchTab, AggregatesAreMarkedInAllTheirVersions) {
  std::vector<sample::FileRow> rows;
  for (const std::int64_t id : {1, 2, 3}) {
    rows.push_back(Live(id, "Store " + std::to_string(id)));
    rows.back().plugin = "Exchange Server";
    rows.back().file = "Mailbox";
  }
  rows.push_back(Live(4, "Store 4"));
  rows[3].plugin = "Exchange Server - Public Folders";
  rows[3].file = "Public";
  rows.push_back(Live(5, "Store 5"));
  rows[4].plugin = "Exchange";
  rows.push_back(Live(6, "C:\\Exports\\plain.kxexag"));  // no aggregate, but named like one
  rows[5].file = "plain.kxexag";
  MakeCatalog(rows);
  ui().tbsOptions.UserSelect(2);
  EXPECT_EQ(Found("Store"), (Strings{"Exchange Server - Public Folders.kxexag", "Mailbox.kxexag",
                                     "Mailbox.kxexag", "Mailbox.kxexag", "Store 5"}));
  Find("Store 2");
  ui().asSearch.UserTick(1, true);
  ui().cmdSearch[kApply].UserClick();
  EXPECT_EQ(catalog->Marked(), (Ids{1, 2, 3}));
  Find("Store 4");
  ui().asSearch.UserTick(1, true);
  ui().cmdSearch[kApply].UserClick();
  EXPECT_EQ(catalog->Marked(), (Ids{1, 2, 3, 4}));
  Find("plain");
  ui().asSearch.UserTick(1, true);
  ui().cmdSearch[kApply].UserClick();
  EXPECT_EQ(catalog->Marked(), (Ids{1, 2, 3, 4, 6}));
}

TEST_F(SearchTab, StoppingKeepsWhatWasFoundAndMarked) {
  LoadSearch();
  int left = 3;
  desktop.onDoEvents = [&] {
    if (left > 0 && --left == 0) ui().form.UserKey(controls::Key::kEscape);
  };
  Find("*.doc");
  EXPECT_EQ(ui().asSearch.Count(), 2u);
  EXPECT_EQ(ui().lblSearchCount.Caption(), "2 File(s)");
  EXPECT_TRUE(ui().form.IsOpen());

  Find("*.doc");
  EXPECT_EQ(ui().asSearch.Count(), 4u) << "a stop is used up by the walk it ended";
  ui().asSearch.TickAll(true);
  left = 3;
  ui().cmdSearch[kApply].UserClick();
  EXPECT_EQ(catalog->Marked().size(), 2u);
  EXPECT_EQ(ui().asRestoreList.Count(), 0u) << "nothing is listed after a stop";
  ui().cmdSearch[kApply].UserClick();
  EXPECT_EQ(catalog->Marked().size(), 4u);
}

TEST_F(SearchTab, ErrorsAreReportedOnceAndEndTheOperation) {
  LoadSearch();
  Find("*.doc");
  ui().asSearch.TickAll(true);
  catalog->HideTable();
  ui().cmdSearch[kApply].UserClick();
  Strings messages = TakeMessages();
  ASSERT_EQ(messages.size(), 2u) << "the first mark that fails, and the list";
  EXPECT_EQ(messages[0].substr(0, 18), "UpdateSelection: (");
  EXPECT_EQ(messages[1].substr(0, 24), "ListCurrentSelections: (");

  Find("*.xls");
  messages = TakeMessages();
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages[0].substr(0, 17), "AdvancedSearch: (");
  EXPECT_EQ(ui().asSearch.Count(), 4u);
  EXPECT_EQ(ui().form.MousePointer(), controls::MousePointer::kDefault);
}

TEST_F(SearchTab, SetNumbersBeyondSixteenBitCannotBeMarked) {
  MakeCatalog({Row(1, 40000, "001", "C:\\a.doc")});
  ui().tbsOptions.UserSelect(2);
  Find("a");
  ASSERT_EQ(ui().asSearch.Count(), 1u);
  ui().asSearch.UserTick(1, true);
  ui().cmdSearch[kApply].UserClick();
  EXPECT_EQ(TakeMessages(), Strings{"AddToSearchSelections: (6) Overflow"});
  EXPECT_EQ(catalog->Marked(), Ids{});
}

}  // namespace
}  // namespace kxrestore::dialog_test
