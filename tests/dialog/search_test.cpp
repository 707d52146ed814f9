// The search tab, driven through its controls.
#include "platform/headless/recording_peer.h"
#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::dialog_test {
namespace {

class SearchTab : public DialogTest {
 protected:
  void Load(const std::vector<sample::FileRow>& rows) {
    MakeCatalog(rows);
    ShowTab(2);
  }
  void LoadSearch() {
    Load({Row(1, 1, "001", "C:\\a.doc"), Row(2, 1, "002", "C:\\a.doc"), Row(3, 1, "003", "C:\\b.doc"),
          Row(4, 2, "001", "D:\\a.doc"), Row(5, 2, "001", "D:\\c.xls")});
  }
  Strings Found(const std::string& mask) {
    Find(mask);
    return Names(ui().asSearch);
  }
  void ApplyFound() { ui().cmdSearch[kApplyFound].UserClick(); }
};

TEST_F(SearchTab, FindsByMaskAndRemembersIt) {
  LoadSearch();
  EXPECT_EQ(Found("*.doc"), (Strings{"C:\\a.doc", "C:\\a.doc", "C:\\b.doc", "D:\\a.doc"}));
  EXPECT_EQ(ui().lblSearchCount.Caption(), "4 File(s)");
  EXPECT_EQ(Found("c.x"), Strings{"D:\\c.xls"});
  EXPECT_EQ(Found("*.doc").size(), 4u);
  EXPECT_EQ(Found("*.DOC").size(), 4u);
  for (const char* blanks : {" ", "a "}) EXPECT_EQ(Found(blanks), Strings{}) << "blanks are looked for, too";
  EXPECT_EQ(Found("*.doc").size(), 4u);
  const Strings masks{"*.doc", "c.x", "*.DOC", " ", "a "};
  EXPECT_EQ(ui().cboMask.Items(), masks);

  platform::PeerLog log;
  platform::Record(ui().cboMask, log);
  Find("");
  ExpectReports({": No Search String Defined."});
  EXPECT_EQ(log.focused, 1);
  EXPECT_EQ(ui().asSearch.Count(), 4u);
  EXPECT_EQ(ui().cboMask.Items(), masks);

  ui().chk1.UserClick();
  EXPECT_EQ(Found("*.doc"), (Strings{"C:\\a.doc", "C:\\b.doc", "D:\\a.doc"}));
  EXPECT_EQ(Found("nothing like it"), Strings{});
  EXPECT_EQ(ui().lblSearchCount.Caption(), "0 File(s)");
}

TEST_F(SearchTab, ThisSetIsTheSetOrTheRunsUpToTheChosenOne) {
  LoadSearch();
  ChooseNode("Set 1");  // chooses "This Set" as well
  EXPECT_EQ(Found("a"), (Strings{"C:\\a.doc", "C:\\a.doc"}));
  EXPECT_EQ(Found("doc").size(), 3u);
  ChooseRun("1 002");  // covers 001 too
  EXPECT_EQ(Found("doc"), (Strings{"C:\\a.doc", "C:\\a.doc"}));
  ui().optLookIn[1].UserClick();
  EXPECT_EQ(Found("doc").size(), 4u) << "all sets know no runs";
  ui().optLookIn[0].UserClick();
  ui().chk1.UserClick();
  EXPECT_EQ(Found("doc"), Strings{"C:\\a.doc"});
  ChooseNode("Online Backups");
  EXPECT_EQ(Found("doc").size(), 3u);
}

TEST_F(SearchTab, ApplyMarksTheRowsThatTheTickedEntriesStandFor) {
  LoadSearch();
  catalog->Execute("UPDATE Catalog SET Filename = 'D:\\A~1.DOC', OrigSize = NULL WHERE ID = 4");
  ChooseNode("Set 1");
  ui().optLookIn[1].UserClick();
  Find("a.doc");
  for (std::size_t number = 1; number <= ui().asSearch.Count(); ++number) {
    const auto entry = ui().asSearch.At(number);
    EXPECT_FALSE(ui().asSearch.TickedAt(number));
    EXPECT_EQ(entry.setName, "Set " + std::to_string(entry.setId));
    EXPECT_EQ(entry.sizeKnown, entry.setId == 1);
    EXPECT_EQ(entry.time, platform::TimeNumber({2026, 3, 1, 10, 0, 0}));
    if (entry.name == "D:\\a.doc" || entry.extension == "002") ui().asSearch.UserTick(number, true);
  }
  ApplyFound();
  EXPECT_EQ(catalog->Marked(), (Ids{2, 4}));
  EXPECT_EQ(Listed(), (Strings{"C:\\a.doc", "D:\\A~1.DOC"}));
  EXPECT_EQ(Selected(), "2 file(s) selected");
  EXPECT_EQ(ui().lblSearchCount.Caption(), "3 File(s)");
  ui().optLookIn[0].UserClick();
  EXPECT_EQ(Found("doc").size(), 3u) << "this set is still the set chosen in the tree";
  ui().cmdSearch[kSelectFound].UserClick();
  EXPECT_FALSE(ui().asSearch.TickedAt(1)) << "that button does nothing here";
  ui().cmdSearch[kClearFound].UserClick();
  EXPECT_EQ(ui().asSearch.Count(), 0u);
  EXPECT_EQ(ui().lblSearchCount.Caption(), "0 File(s)");
  EXPECT_EQ(ui().cboMask.Text(), "doc") << "Clear leaves the mask";
}

TEST_F(SearchTab, AggregatesAreMarkedInAllTheirVersions) {
  std::vector<sample::FileRow> rows;
  for (const std::int64_t id : {1, 2, 3}) {
    rows.push_back(PluginRow(id, "Exchange Server", "Store " + std::to_string(id), "Mailbox"));
  }
  rows.push_back(PluginRow(4, "Exchange Server - Public Folders", "Store 4", "Public"));
  rows.push_back(PluginRow(5, "Exchange", "Store 5", "Store 5"));
  rows.push_back(Live(6, "C:\\Exports\\plain.kxexag"));  // no aggregate, but named like one
  rows.back().file = "plain.kxexag";
  for (const int id : {7, 8}) rows.push_back(Live(id, "C:\\P.KXEXAG"));  // nor are these, in their case
  Load(rows);
  EXPECT_EQ(Found("Store"), (Strings{"Exchange Server - Public Folders.kxexag", "Mailbox.kxexag",
                                     "Mailbox.kxexag", "Mailbox.kxexag", "Store 5"}));
  const std::pair<const char*, Ids> cases[] = {{"Store 2", {1, 2, 3}},
                                               {"Store 4", {1, 2, 3, 4}},
                                               {"plain", {1, 2, 3, 4, 6}},
                                               {"P.KX", {1, 2, 3, 4, 6, 7}}};
  for (const auto& [mask, marked] : cases) {
    Find(mask);
    ui().asSearch.UserTick(1, true);
    ApplyFound();
    EXPECT_EQ(catalog->Marked(), marked) << mask;
  }
}

TEST_F(SearchTab, StoppingAndFailingKeepWhatWasFoundAndMarked) {
  LoadSearch();
  EscapeAt(3);
  Find("*.doc");
  EXPECT_EQ(ui().asSearch.Count(), 2u);
  EXPECT_EQ(ui().lblSearchCount.Caption(), "2 File(s)");
  EXPECT_TRUE(ui().form.IsOpen());
  Find("*.doc");
  EXPECT_EQ(ui().asSearch.Count(), 4u) << "a stop is used up by the walk it ended";
  ui().asSearch.TickAll(true);
  ui().asRestoreList.Add({});
  EscapeAt(3);
  ApplyFound();
  EXPECT_EQ(catalog->Marked().size(), 2u);
  EXPECT_EQ(ui().asRestoreList.Count(), 1u) << "a stop leaves the list as it was";
  ApplyFound();
  EXPECT_EQ(catalog->Marked().size(), 4u);

  catalog->HideTable();
  ApplyFound();  // the same error of four marks is told once
  ExpectReports({"UpdateSelection: (", "AddToSearchSelections: 4 file(s) could not be marked.",
                 "ListCurrentSelections: ("});
  Find("*.xls");
  ExpectReports({"AdvancedSearch: ("});
  EXPECT_EQ(ui().asSearch.Count(), 4u);
  EXPECT_EQ(ui().form.MousePointer(), controls::MousePointer::kDefault);
}

// An entry's own set and extension are used as they are, and nothing is cut to fit.
TEST_F(SearchTab, EntriesOfOddRunsMarkTheirOwnRowsOrNone) {
  auto noExtension = Row(3, 1, "", "C:\\same.doc");
  Load({Row(1, 1, "003", "C:\\same.doc"), Row(2, 0, "003", "C:\\same.doc"), noExtension,
        Row(4, 40000, "003", "C:\\same.doc"), Row(5, (std::int64_t{1} << 32) + 1, "003", "C:\\same.doc")});
  ChooseRun();
  const std::pair<int, Ids> cases[] = {{2, {2}}, {3, {2, 3}}, {4, {2, 3}}, {5, {2, 3}}};
  for (const auto& [id, marked] : cases) {
    catalog->Execute("UPDATE Catalog SET OrigName = iif(ID = " + std::to_string(id) + ", 'hit', 'other')");
    Find("hit");
    ASSERT_EQ(ui().asSearch.Count(), 1u);
    ui().asSearch.UserTick(1, true);
    ApplyFound();
    EXPECT_EQ(catalog->Marked(), marked) << id;
    if (id >= 4) {
      ExpectReports(
          {"AddToSearchSelections: (6) Overflow", "AddToSearchSelections: 1 file(s) could not be marked."});
    }
  }
}

}  // namespace
}  // namespace kxrestore::dialog_test
