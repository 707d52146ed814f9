// The tree of backup sets and runs, and what choosing a node does to the rest of the form.
#include "dialog/set_tree.h"

#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::dialog_test {
namespace {

TEST_F(DialogTest, ListsCompletedRunsNewestFirst) {
  auto runs = Runs();
  runs.push_back({1, "2026-03-05 08:00:00", "004", false, 5});  // not completed
  runs.push_back({1, "2026-03-06 08:00:00", "x01", false, 6});
  runs.push_back({3, "2026-03-07 08:00:00", "x01", false, 6});  // nothing else in its set
  runs.push_back({2, "2026-01-07 00:00:00", "X01", false, 6});  // another extension than that
  MakeCatalog({}, runs);
  EXPECT_EQ(Outline(ui().tvwSets.FirstRoot()),
            (Strings{"Online Backups", " Set 1", "  3/1/2026 8:00:00 AM (P) {1 003}",
                     "  2/1/2026 2:25:30 PM {1 002}", "  1/1/2026 {1 001}", " Set 2",
                     "  2/15/2026 10:30:00 AM {2 001}", "  1/7/2026 {2 X01}"}));
  EXPECT_EQ(ui().tvwSets.Item("Sets").Text(), "Online Backups");
  EXPECT_EQ(ui().tvwSets.Item("Sets\\Set 1").Text(), "Set 1");
  EXPECT_TRUE(ui().tvwSets.Find("3/1/2026 8:00:00 AM")) << "a permanent run's key is the bare date";
  for (int index = 1; index <= 8; ++index) EXPECT_EQ(ui().tvwSets.Item(index).Image(), 0);
  EXPECT_TRUE(ui().tvwSets.Item(1).Expanded());
  EXPECT_FALSE(ui().tvwSets.Item(2).Expanded());
  EXPECT_TRUE(ui().tvwSets.SelectedItem() == ui().tvwSets.Item(1));

  ui().form.Unload();
  MakeCatalog({}, {{1, "2026-01-01 00:00:00", "001", false, 5}});
  EXPECT_EQ(Outline(ui().tvwSets.FirstRoot()), Strings{"Online Backups"});

  // Names that differ in case are two sets, though they are sorted as one.
  ui().form.Unload();
  MakeCatalog({});
  catalog->Execute("UPDATE SetNames SET Name = 'SET 1' WHERE ID = 2");
  EXPECT_EQ(Outline(ui().tvwSets.FirstRoot()),
            (Strings{"Online Backups", " Set 1", "  3/1/2026 8:00:00 AM (P) {1 003}",
                     "  2/1/2026 2:25:30 PM {1 002}", "  1/1/2026 {1 001}", " SET 1",
                     "  2/15/2026 10:30:00 AM {2 001}"}));

  // Two runs of the same moment end the tree.
  ui().form.Unload();
  MakeCatalog({}, {{1, "2026-01-01 00:00:00", "001", false, 6},
                   {2, "2026-01-01 00:00:00", "001", false, 6},
                   {3, "2026-01-02 00:00:00", "001", false, 6}});
  EXPECT_EQ(ui().tvwSets.Count(), 4u) << "root, set 1 with its run, set 2";
  ExpectReports({"LoadBackupSetTree: (35602) Key is not unique in collection"});
}

TEST_F(DialogTest, EachKindOfNodeLeavesAChoice) {
  BareContext bare(platform.Get(), *workspace);
  auto& [parameters, controls, services, context] = bare;
  dialog::SetTree tree(context);
  const controls::Node root = controls.tvwSets.Add({}, "Sets", "Online Backups");
  const controls::Node set = controls.tvwSets.Add(root, "Sets\\Set 1", "Set 1");
  const controls::Node newest = controls.tvwSets.Add(set, "b", "b (P)", 0, "7 003");
  const controls::Node older = controls.tvwSets.Add(set, "a", "a", 0, "6 002 and more");
  const auto choose = [&](controls::Node node) {
    controls.tvwSets.UserClickNode(node);
    const dialog::Choice& choice = context.choice;
    return std::to_string(choice.m_lngSetID) + "|" + choice.m_strSetID + "|" + choice.m_strExtension + "|" +
           std::to_string(choice.m_intRunCount);
  };
  EXPECT_EQ(choose(set), "7|||0") << "of its newest run";
  EXPECT_FALSE(controls.optLookIn[2].Enabled()) << "the option of the other panel is left alone";
  EXPECT_EQ(choose(newest), "7|7|003|2");
  EXPECT_EQ(choose(older), "6|6|002|1");
  EXPECT_EQ(choose(set), "7||002|0") << "the extension is still that of the run";
  EXPECT_EQ(choose(root), "0|||0");
  EXPECT_EQ(tree.ListRunExtensions(newest), "\"003\", \"002\"");
  EXPECT_EQ(tree.ListRunExtensions(older), "\"002\"");

  // Six runs more than a 16-bit count holds: the choice is made all the same, as far as it goes.
  for (int run = 0; run < 32772; ++run) controls.tvwSets.Add(set, {}, "older", 0, "8 001");
  EXPECT_EQ(choose(newest), "7|7|003|32767");
  EXPECT_TRUE(controls.optLookIn[2].Enabled());
  EXPECT_THROW(tree.ListRunExtensions(newest), Error);
  EXPECT_EQ(choose(older.Next()), "8|8|001|32767");
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
