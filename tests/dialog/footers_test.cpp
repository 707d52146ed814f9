// What stands below the lists and the tree, what waits to be applied, and leaving with that.
#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::dialog_test {
namespace {

std::string Text(const controls::FooterText& footer) {
  return footer.pending + "|" + footer.sums + "|" + footer.selected;
}

class FootersTest : public DialogTest {
 protected:
  FootersTest() {
    std::vector<sample::FileRow> rows;
    for (int id = 1; id <= 4; ++id) {
      rows.push_back(
          Row(id, id == 4 ? 2 : 1, id == 4 ? "001" : "003", "C:\\d\\" + std::to_string(id) + ".doc"));
      rows.back().origSize = id * 1024 * 1024;
    }
    MakeCatalog(rows);
  }
  std::string Below(const AutoSelect& list) { return Text(list.DescribeFooter()); }
  std::string BelowTree() { return Text(ui().tvwDetails.DescribeFooter()); }
  std::string Bytes() { return ui().lblCounts[1].Caption(); }
  static void TickAllIn(AutoSelect& list, bool ticked = true) { list.UserTickShown(ticked); }
};

TEST_F(FootersTest, TheListSaysWhatItSumsUpToAndWhatIsUnticked) {
  EXPECT_EQ(Bytes(), "Bytes: 0 ");
  EXPECT_TRUE(ui().lblCounts[1].Visible());
  EXPECT_EQ(Below(ui().asRestoreList), "||");
  catalog->Execute("UPDATE Catalog SET Restore = 1");
  Click(kRefresh);
  AutoSelect& list = ui().asRestoreList;
  EXPECT_EQ(Bytes(), "Bytes: 10,485,760");
  EXPECT_EQ(Below(list), "|4 files, 10 MB, 2 sets|");
  list.UserSelect(0, 1, true);
  EXPECT_EQ(Below(list), "|4 files, 10 MB, 2 sets|Selected: 2 files, 3 MB");
  list.UserTickSelected(false);
  EXPECT_EQ(Below(list), "2 unticked: press Update|4 files, 10 MB, 2 sets|Selected: 2 files, 3 MB");
  EXPECT_EQ(Selected(), "4 file(s) selected") << "the count is that of the catalog until then";
  controls::ListFilter filter;
  filter.setId = 2;
  list.UserFilter(filter);
  EXPECT_EQ(Below(list), "2 unticked: press Update|1 file, 4 MB of 4 files, 10 MB|");
  list.UserFilter({});
  Click(kUpdate);
  EXPECT_EQ(Below(list), "|2 files, 7 MB, 2 sets|");
  EXPECT_EQ(Bytes(), "Bytes: 7,340,032");
  desktop.answers = {platform::Answer::kYes};
  Click(kClearList);
  EXPECT_EQ(Bytes() + Below(list), "Bytes: 0||");
  desktop.messages.clear();
}

// A tick is pending until its mark is in the catalog, and again once that is gone.
TEST_F(FootersTest, TicksArePendingUntilTheyAreApplied) {
  ChooseRun();
  EXPECT_EQ(BelowTree(), "|0 of 3 ticked|");
  Tick("1.doc");
  Tick("3.doc");
  EXPECT_EQ(BelowTree(), "2 ticked: press Apply|2 of 3 ticked|");
  Apply();
  EXPECT_EQ(BelowTree(), "|2 of 3 ticked|");
  ShowTab(2);
  Find("doc");
  AutoSelect& found = ui().asSearch;
  TickAllIn(found);
  EXPECT_EQ(Below(found), "4 ticked: press Apply|4 files, 10 MB, 2 sets|");
  ui().cmdSearch[kApplyFound].UserClick();
  EXPECT_EQ(Below(found), "|4 files, 10 MB, 2 sets|");

  Tick(ui().asRestoreList, "C:\\d\\3.doc", false);
  Tick(ui().asRestoreList, "C:\\d\\4.doc", false);
  Click(kUpdate);
  EXPECT_EQ(catalog->Marked(), (Ids{1, 2}));
  EXPECT_EQ(BelowTree(), "1 ticked: press Apply|2 of 3 ticked|");
  EXPECT_EQ(found.PendingCount(), 2u);
  desktop.answers = {platform::Answer::kYes};
  Click(kClearList);
  EXPECT_EQ(BelowTree(), "2 ticked: press Apply|2 of 3 ticked|");
  EXPECT_EQ(found.PendingCount(), 4u);

  ShowTab(3);
  Tick(ui().asFiles, ".doc");
  EXPECT_EQ(Below(ui().asFiles), "1 ticked: press Apply|1 type, 4 file(s)|");
  ui().cmdAuto[kApplyTypes].UserClick();
  EXPECT_EQ(ui().asFiles.PendingCount(), 0u);
  desktop.messages.clear();
}

TEST_F(FootersTest, WhatAStoppedOrFailedWalkHasNotMarkedStaysPending) {
  ChooseRun();
  TickAll();
  EscapeAt(5);  // a drive, a folder, three files: the last one is not marked
  Apply();
  EXPECT_EQ(catalog->Marked(), (Ids{1, 2}));
  EXPECT_EQ(ui().tvwDetails.Files().pending, 1u);
  ShowTab(2);
  Find("doc");
  TickAllIn(ui().asSearch);
  EscapeAt(3);
  ui().cmdSearch[kApplyFound].UserClick();
  EXPECT_EQ(ui().asSearch.PendingCount(), 2u);
  catalog->HideTable();
  ui().cmdSearch[kApplyFound].UserClick();
  ShowTab(1);
  Apply();
  EXPECT_EQ(ui().asSearch.PendingCount(), 2u);
  EXPECT_EQ(ui().tvwDetails.Files().pending, 1u);
  EXPECT_EQ(ui().asSearch.Count(), 4u) << "no tick is lost";
  desktop.messages.clear();
}

TEST_F(FootersTest, EscWithPendingTicksAsksOnceBeforeItCancels) {
  ChooseRun();
  Tick("1.doc");
  desktop.answers = {platform::Answer::kNo};
  Escape();
  EXPECT_TRUE(ui().form.IsOpen());
  ExpectReports({"Ticks not applied: There are ticks that are not applied yet. Leave without them?"});
  desktop.answers = {platform::Answer::kYes};
  FormControls& controls = ui();
  Escape();
  EXPECT_FALSE(controls.form.IsOpen());
  ExpectReports({"Ticks not applied: "});
}

}  // namespace
}  // namespace kxrestore::dialog_test
