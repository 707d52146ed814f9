// The search tab, driven through its controls.
#include <algorithm>

#include "controls/peer.h"
#include "platform/headless/recording_peer.h"
#include "tests/dialog/catalog_form.h"

namespace kxrestore::dialog_test {
namespace {

FileRow In(FileRow row, int setId, const std::string& extension) {
  row.setId = setId;
  row.extension = extension;
  return row;
}

class SearchTab : public CatalogForm {
 protected:
  enum Button { kApply, kClear, kFind, kSelectAll };

  void LoadSearch() {
    Load({In(Live(1, "C:\\a.doc"), 1, "001"), In(Live(2, "C:\\a.doc"), 1, "002"),
          In(Live(3, "C:\\b.doc"), 1, "003"), In(Live(4, "D:\\a.doc"), 2, "001"),
          In(Live(5, "D:\\c.xls"), 2, "001")},
         {CompletedRun(1, "001", 1), CompletedRun(1, "002", 2), CompletedRun(1, "003", 3),
          CompletedRun(2, "001", 4)});
    ShowTab(2);
  }
  void Find(const std::string& mask) {
    Ui().cboMask.UserType(mask);
    Ui().cmdSearch[kFind].UserClick();
  }
  Texts Found(const std::string& mask) {
    Find(mask);
    return Sorted(Names(Ui().asSearch));
  }
};

TEST_F(SearchTab, FindsByMaskAndRemembersIt) {
  LoadSearch();
  EXPECT_EQ(Found("*.doc"), (Texts{"C:\\a.doc", "C:\\a.doc", "C:\\b.doc", "D:\\a.doc"}));
  EXPECT_EQ(Ui().lblSearchCount.Caption(), "4 File(s)");
  EXPECT_EQ(Found("c.x"), Texts{"D:\\c.xls"});
  EXPECT_EQ(Found("*.doc").size(), 4u);
  EXPECT_EQ(Found("*.DOC").size(), 4u);
  EXPECT_EQ(Ui().cboMask.Items(), (Texts{"*.doc", "c.x", "*.DOC"}));

  Ui().chk1.UserClick();
  EXPECT_EQ(Found("*.doc"), (Texts{"C:\\a.doc", "C:\\b.doc", "D:\\a.doc"}));
  EXPECT_EQ(Found("nothing like it"), Texts{});
  EXPECT_EQ(Ui().lblSearchCount.Caption(), "0 File(s)");
  EXPECT_EQ(Messages(), Texts{});
  EXPECT_EQ(Ui().form.MousePointer(), controls::MousePointer::kDefault);
}

TEST_F(SearchTab, AnEntryCarriesItsRow) {
  auto row = In(Live(7, "C:\\a.doc"), 2, "001");
  row.filename = "C:\\A~1.DOC";
  row.origSize.reset();
  Load({row});
  ShowTab(2);
  Find("a");
  ASSERT_EQ(Ui().asSearch.Count(), 1u);
  const auto entry = Ui().asSearch.At(1);
  EXPECT_EQ(entry.name, "C:\\a.doc");
  EXPECT_EQ(entry.storedName, "C:\\A~1.DOC");
  EXPECT_FALSE(entry.sizeKnown);
  EXPECT_EQ(entry.extension, "001");
  EXPECT_EQ(entry.setId, 2);
  EXPECT_EQ(entry.setName, "Set 2");
  EXPECT_EQ(entry.date, "3/1/2026 10:00:00 AM");
  EXPECT_FALSE(Ui().asSearch.TickedAt(1));
}

TEST_F(SearchTab, AnEmptyMaskIsAskedForAndChangesNothing) {
  LoadSearch();
  platform::PeerLog log;
  platform::Record(Ui().cboMask, log);
  Find("*.doc");
  Find("");
  ASSERT_EQ(platform.desktop.messages.size(), 1u);
  EXPECT_EQ(platform.desktop.messages[0].style, 0);
  EXPECT_EQ(Messages(), Texts{"|No Search String Defined."});
  EXPECT_EQ(log.focused, 1);
  EXPECT_EQ(Ui().asSearch.Count(), 4u);
  EXPECT_EQ(Ui().lblSearchCount.Caption(), "4 File(s)");
  EXPECT_EQ(Ui().cboMask.Items(), Texts{"*.doc"});
}

TEST_F(SearchTab, ThisSetIsTheSetOrTheRunsUpToTheChosenOne) {
  LoadSearch();
  ChooseNode("Sets\\Set 1");  // chooses "This Set" as well
  ShowTab(2);
  EXPECT_EQ(Found("a"), (Texts{"C:\\a.doc", "C:\\a.doc"}));
  EXPECT_EQ(Found("doc"), (Texts{"C:\\a.doc", "C:\\a.doc", "C:\\b.doc"}));

  const controls::Node newest = Ui().tvwSets.Item("Sets\\Set 1").Child();
  Ui().tvwSets.UserClickNode(newest.Next());  // the run 002, which covers 001 too
  EXPECT_EQ(Found("doc"), (Texts{"C:\\a.doc", "C:\\a.doc"}));
  Ui().optLookIn[1].UserClick();
  EXPECT_EQ(Found("doc").size(), 4u) << "all sets know no runs";
  Ui().optLookIn[0].UserClick();
  Ui().chk1.UserClick();
  EXPECT_EQ(Found("doc"), Texts{}) << "the newest of the name in these runs belongs to the other set";

  ChooseNode("Sets");
  EXPECT_EQ(Found("doc").size(), 3u);
  EXPECT_EQ(Messages(), Texts{});
}

TEST_F(SearchTab, ApplyMarksTheTickedEntries) {
  LoadSearch();
  ChooseNode("Sets\\Set 1");
  Ui().optLookIn[1].UserClick();
  Find("a.doc");
  for (std::size_t number = 1; number <= Ui().asSearch.Count(); ++number) {
    const auto entry = Ui().asSearch.At(number);
    if (entry.name == "D:\\a.doc" || entry.extension == "002") Ui().asSearch.UserTick(number, true);
  }
  Ui().cmdSearch[kApply].UserClick();
  EXPECT_EQ(file->Marked(), (Ids{2, 4}));
  EXPECT_EQ(Sorted(Names(Ui().asRestoreList)), (Texts{"C:\\a.doc", "D:\\a.doc"}));
  EXPECT_EQ(Ui().lblCounts[0].Caption(), "2 file(s) selected");
  EXPECT_EQ(Ui().lblSearchCount.Caption(), "3 File(s)");

  Ui().optLookIn[0].UserClick();
  EXPECT_EQ(Found("doc").size(), 3u) << "this set is still the set chosen in the tree";

  Ui().cmdSearch[kSelectAll].UserClick();
  EXPECT_FALSE(Ui().asSearch.TickedAt(1));
  Ui().cmdSearch[kClear].UserClick();
  EXPECT_EQ(Ui().asSearch.Count(), 0u);
  EXPECT_EQ(Ui().lblSearchCount.Caption(), "0 File(s)");
  EXPECT_EQ(Messages(), Texts{});
}

TEST_F(SearchTab, ApplyWithoutATickMarksNothingAndCountsToTheEnd) {
  auto marked = Live(9, "X:\\marked.txt");
  marked.restore = true;
  Load({Live(1, "C:\\a.doc"), Live(2, "C:\\b.doc"), marked});
  ShowTab(2);
  Find(".doc");
  Texts captions;
  platform.desktop.onDoEvents = [&] { captions.push_back(Ui().lblSearchCount.Caption()); };
  file->Execute("UPDATE Catalog SET Restore = 1 WHERE ID = 1");
  Ui().cmdSearch[kApply].UserClick();
  EXPECT_EQ(captions, (Texts{"2 File(s)", "Scanning 1", "Scanning 2", "Scanning 2"}))
      << "once before each entry and before each row of the restore list";
  EXPECT_EQ(file->Marked(), (Ids{1, 9}));
  EXPECT_EQ(Ui().asRestoreList.Count(), 2u);
}

TEST_F(SearchTab, AggregatesAreMarkedInAllTheirVersions) {
  std::vector<FileRow> rows;
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
  Load(rows);
  ShowTab(2);
  EXPECT_EQ(Found("Store"), (Texts{"Exchange Server - Public Folders.kxexag", "Mailbox.kxexag",
                                   "Mailbox.kxexag", "Mailbox.kxexag", "Store 5"}));
  Find("Store 2");
  Ui().asSearch.UserTick(1, true);
  Ui().cmdSearch[kApply].UserClick();
  EXPECT_EQ(file->Marked(), (Ids{1, 2, 3}));
  Find("Store 4");
  Ui().asSearch.UserTick(1, true);
  Ui().cmdSearch[kApply].UserClick();
  EXPECT_EQ(file->Marked(), (Ids{1, 2, 3, 4}));
}

TEST_F(SearchTab, StoppingKeepsWhatWasFoundAndMarked) {
  LoadSearch();
  int left = 3;
  platform.desktop.onDoEvents = [&] {
    if (left > 0 && --left == 0) Ui().form.UserKey(controls::Key::kEscape);
  };
  Find("*.doc");
  EXPECT_EQ(Ui().asSearch.Count(), 2u);
  EXPECT_EQ(Ui().lblSearchCount.Caption(), "2 File(s)");
  EXPECT_TRUE(Ui().form.IsOpen());

  Find("*.doc");
  EXPECT_EQ(Ui().asSearch.Count(), 4u) << "a stop is used up by the walk it ended";
  Ui().asSearch.TickAll(true);
  left = 3;
  Ui().cmdSearch[kApply].UserClick();
  EXPECT_EQ(file->Marked().size(), 2u);
  EXPECT_EQ(Ui().asRestoreList.Count(), 0u) << "nothing is listed after a stop";
  Ui().cmdSearch[kApply].UserClick();
  EXPECT_EQ(file->Marked().size(), 4u);
}

TEST_F(SearchTab, AWalkIsNotEnteredTwice) {
  LoadSearch();
  bool pressed = false;
  platform.desktop.onDoEvents = [&] {
    if (pressed || Ui().asSearch.Count() != 1) return;
    pressed = true;
    Ui().cmdSearch[kClear].UserClick();
    Ui().cmdSearch[kFind].UserClick();
  };
  Find("*.doc");
  EXPECT_TRUE(pressed);
  EXPECT_EQ(Ui().asSearch.Count(), 4u);
}

TEST_F(SearchTab, ErrorsAreReportedOnceAndEndTheOperation) {
  LoadSearch();
  Find("*.doc");
  Ui().asSearch.TickAll(true);
  file->Execute("ALTER TABLE Catalog RENAME TO Elsewhere");
  Ui().cmdSearch[kApply].UserClick();
  Texts messages = Messages();
  ASSERT_EQ(messages.size(), 2u) << "the first mark that fails, and the list";
  EXPECT_EQ(messages[0].substr(0, 17), "UpdateSelection|(");
  EXPECT_EQ(messages[1].substr(0, 23), "ListCurrentSelections|(");

  Find("*.xls");
  messages = Messages();
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages[0].substr(0, 16), "AdvancedSearch|(");
  EXPECT_EQ(Ui().asSearch.Count(), 4u);
  EXPECT_EQ(Ui().form.MousePointer(), controls::MousePointer::kDefault);
}

TEST_F(SearchTab, SetNumbersBeyondSixteenBitCannotBeMarked) {
  Load({In(Live(1, "C:\\a.doc"), 40000, "001")});
  ShowTab(2);
  Find("a");
  ASSERT_EQ(Ui().asSearch.Count(), 1u);
  Ui().asSearch.UserTick(1, true);
  Ui().cmdSearch[kApply].UserClick();
  EXPECT_EQ(Messages(), Texts{"AddToSearchSelections|(6) Overflow"});
  EXPECT_EQ(file->Marked(), Ids{});
}

}  // namespace
}  // namespace kxrestore::dialog_test
