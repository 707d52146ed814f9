// The tree of backup sets and runs, and what choosing a node does to the rest of the form.
#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::dialog_test {
namespace {

TEST_F(DialogTest, ListsCompletedRunsNewestFirst) {
  auto runs = Runs();
  runs.push_back({1, "2026-03-05 08:00:00", "004", false, 5});  // not completed
  runs.push_back({1, "2026-03-06 08:00:00", "x01", false, 6});
  runs.push_back({3, "2026-03-07 08:00:00", "x01", false, 6});  // nothing else in its set
  MakeCatalog({}, runs);
  EXPECT_EQ(Outline(ui().tvwSets.FirstRoot()),
            (Strings{"Online Backups", " Set 1", "  3/1/2026 8:00:00 AM (P) {1 003}",
                     "  2/1/2026 2:25:30 PM {1 002}", "  1/1/2026 {1 001}", " Set 2",
                     "  2/15/2026 10:30:00 AM {2 001}"}));
  EXPECT_TRUE(ui().tvwSets.Item(1).Expanded());
  EXPECT_FALSE(ui().tvwSets.Item(2).Expanded());
  EXPECT_TRUE(ui().tvwSets.SelectedItem() == ui().tvwSets.Item(1));

  ui().form.Unload();
  MakeCatalog({}, {{1, "2026-01-01 00:00:00", "001", false, 5}});
  EXPECT_EQ(Outline(ui().tvwSets.FirstRoot()), Strings{"Online Backups"});

  // Two runs of the same moment end the tree.
  ui().form.Unload();
  MakeCatalog({}, {{1, "2026-01-01 00:00:00", "001", false, 6},
                   {2, "2026-01-01 00:00:00", "001", false, 6},
                   {3, "2026-01-02 00:00:00", "001", false, 6}});
  EXPECT_EQ(ui().tvwSets.Count(), 4u) << "root, set 1 with its run, set 2";
  ExpectReports({"LoadBackupSetTree: (35602) Key is not unique in collection"});
}

TEST_F(DialogTest, ChoosingARunShowsItAndEnablesThisSet) {
  MakeCatalog({Row(1, 1, "002", "C:\\Data\\a.doc"), Row(2, 1, "001", "C:\\Data\\b.doc")});
  const char* const kRun = "2/1/2026 2:25:30 PM";
  EXPECT_EQ(ui().lblSetName.Caption(), "(none)");
  ChooseRun("1 002");
  EXPECT_EQ(ui().lblSetName.Caption(), std::string("Set 1\r\n up to \r\n") + kRun);
  EXPECT_TRUE(ui().optLookIn[0].Enabled());
  EXPECT_TRUE(ui().optLookIn[2].Enabled());
  EXPECT_EQ(ui().lblTreeCount.Caption(), "1 file(s).");
  EXPECT_TRUE(NodeOf(ui().tvwSets, kRun).Bold());

  ChooseNode("Set 2");
  EXPECT_FALSE(NodeOf(ui().tvwSets, kRun).Bold());
  EXPECT_TRUE(NodeOf(ui().tvwSets, "Set 2").Bold());
  EXPECT_EQ(ui().lblSetName.Caption(), "Set 2");
  EXPECT_TRUE(ui().optLookIn[0].Value());
  EXPECT_EQ(ui().tvwDetails.Count(), 3u) << "a set loads no details";

  ChooseNode("Online Backups");
  EXPECT_EQ(ui().lblSetName.Caption(), "(All)");
  EXPECT_TRUE(ui().optLookIn[1].Value());
  EXPECT_FALSE(ui().optLookIn[0].Enabled());
  EXPECT_TRUE(ui().optLookIn[2].Enabled()) << "the option of the other panel is left alone";
}

TEST_F(DialogTest, RunChosenDuringALoadChangesLabelsOnly) {
  MakeCatalog({Row(1, 1, "003", "C:\\a.doc"), Row(2, 1, "003", "C:\\b.doc"), Row(3, 2, "001", "C:\\c.doc")});
  ui();
  DuringWalk(2, [this] { ChooseRun("2 001"); });
  ChooseRun();
  EXPECT_EQ(ui().lblSetName.Caption(), "Set 2\r\n up to \r\n2/15/2026 10:30:00 AM");
  EXPECT_EQ(ui().lblTreeCount.Caption(), "2 file(s).");
  TickAll();
  Apply();
  EXPECT_EQ(catalog->Marked(), (Ids{1, 2})) << "marks go to the run whose files are shown";
  ChooseRun("2 001");
  EXPECT_EQ(ui().lblTreeCount.Caption(), "1 file(s).");
}

}  // namespace
}  // namespace kxrestore::dialog_test
