// The tree of backup sets and runs, and what choosing a node does to the rest of the form.
#include "dialog/set_tree.h"

#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::dialog_test {
namespace {

class SetTreeTest : public DialogTest {
 protected:
  // "text [key] {tag}" of every node, indented by level.
  Strings Tree() {
    Strings lines;
    const auto walk = [&](const auto& self, controls::Node node, const std::string& indent) -> void {
      for (; node; node = node.Next()) {
        lines.push_back(indent + std::string(node.Text()) + " [" + std::string(node.Key()) + "] {" +
                        std::string(node.Tag()) + "}");
        self(self, node.Child(), indent + " ");
      }
    };
    walk(walk, ui().tvwSets.FirstRoot(), "");
    return lines;
  }
  void Click(std::string_view text) { ui().tvwSets.UserClickNode(NodeOf(ui().tvwSets, text)); }
};

TEST_F(SetTreeTest, ListsCompletedRunsNewestFirst) {
  auto runs = Runs();
  runs.push_back({1, "2026-03-05 08:00:00", "004", false, 5});  // not completed
  runs.push_back({1, "2026-03-06 08:00:00", "x01", false, 6});
  runs.push_back({3, "2026-03-07 08:00:00", "x01", false, 6});  // nothing else in its set
  MakeCatalog({}, runs);
  EXPECT_EQ(Tree(),
            (Strings{"Online Backups [Sets] {}", " Set 1 [Sets\\Set 1] {}",
                     "  3/1/2026 8:00:00 AM (P) [3/1/2026 8:00:00 AM] {1 003}",
                     "  2/1/2026 2:25:30 PM [2/1/2026 2:25:30 PM] {1 002}", "  1/1/2026 [1/1/2026] {1 001}",
                     " Set 2 [Sets\\Set 2] {}", "  2/15/2026 10:30:00 AM [2/15/2026 10:30:00 AM] {2 001}"}));
  EXPECT_TRUE(ui().tvwSets.Item(1).Expanded());
  EXPECT_FALSE(ui().tvwSets.Item(2).Expanded());
  EXPECT_TRUE(ui().tvwSets.SelectedItem() == ui().tvwSets.Item(1));
  EXPECT_EQ(TakeMessages(), Strings{});
}

TEST_F(SetTreeTest, EmptyCatalogHasARootOnly) {
  MakeCatalog({}, {{1, "2026-01-01 00:00:00", "001", false, 5}});
  EXPECT_EQ(Tree(), Strings{"Online Backups [Sets] {}"});
  EXPECT_TRUE(ui().tvwSets.Item(1).Expanded());
  EXPECT_EQ(TakeMessages(), Strings{});
}

TEST_F(SetTreeTest, RunsOfTheSameMomentEndTheTreeWithAReport) {
  MakeCatalog({}, {{1, "2026-01-01 00:00:00", "001", false, 6},
                   {2, "2026-01-01 00:00:00", "001", false, 6},
                   {3, "2026-01-02 00:00:00", "001", false, 6}});
  EXPECT_EQ(Tree().size(), 4u) << "root, set 1 with its run, set 2";
  EXPECT_EQ(TakeMessages(), Strings{"LoadBackupSetTree: (35602) Key is not unique in collection"});
}

TEST_F(SetTreeTest, ChoosingARunShowsItAndEnablesThisSet) {
  MakeCatalog({Row(1, 1, "002", "C:\\Data\\a.doc"), Row(2, 1, "001", "C:\\Data\\b.doc")});
  EXPECT_EQ(ui().lblSetName.Caption(), "(none)");
  ChooseRun("1 002");
  EXPECT_EQ(ui().lblCurrSet.Caption(), "Current Set: ");
  EXPECT_EQ(ui().lblSetName.Caption(), "Set 1\r\n up to \r\n2/1/2026 2:25:30 PM");
  EXPECT_TRUE(ui().optLookIn[0].Enabled());
  EXPECT_TRUE(ui().optLookIn[2].Enabled());
  EXPECT_EQ(ui().lblTreeCount.Caption(), "1 file(s).");
  EXPECT_TRUE(NodeOf(ui().tvwSets, "2/1/2026 2:25:30 PM").Bold());

  Click("Set 2");
  EXPECT_FALSE(NodeOf(ui().tvwSets, "2/1/2026 2:25:30 PM").Bold());
  EXPECT_TRUE(NodeOf(ui().tvwSets, "Set 2").Bold());
  EXPECT_EQ(ui().lblSetName.Caption(), "Set 2");
  EXPECT_TRUE(ui().optLookIn[0].Value());
  EXPECT_EQ(ui().tvwDetails.Count(), 3u) << "a set loads no details";

  Click("Online Backups");
  EXPECT_EQ(ui().lblSetName.Caption(), "(All)");
  EXPECT_TRUE(ui().optLookIn[1].Value());
  EXPECT_FALSE(ui().optLookIn[0].Enabled());
  EXPECT_TRUE(ui().optLookIn[2].Enabled()) << "the option of the other panel is left alone";
  EXPECT_EQ(ui().tvwDetails.Count(), 3u);
}

// The set and the runs that a click settled on, seen by a panel of the test's own.
TEST_F(SetTreeTest, ChoiceNamesSetExtensionAndTheRunsUpToIt) {
  MakeCatalog({});
  dialog::Parameters parameters;
  parameters.DBName = catalog->Path();
  FormControls controls;
  platform::Platform services = platform.Get();
  dialog::FormContext context(parameters, controls, services, *workspace);
  context.connection.dbName = catalog->Path();
  dialog::SetTree tree(context);
  tree.LoadBackupSetTree();
  const dialog::Choice& choice = context.choice;

  EXPECT_EQ(tree.ListRunExtensions(controls.tvwSets.Item(3)), "\"003\", \"002\", \"001\"");
  EXPECT_EQ(choice.m_intRunCount, 3);
  EXPECT_EQ(tree.ListRunExtensions(controls.tvwSets.Item(5)), "\"001\"");

  tree.tvwSets_NodeClick(controls.tvwSets.Item(4));
  EXPECT_EQ(choice.m_lngSetID, 1);
  EXPECT_EQ(choice.m_strSetID, "1");
  EXPECT_EQ(choice.m_strExtension, "002");
  EXPECT_EQ(choice.m_intRunCount, 2);

  tree.tvwSets_NodeClick(NodeOf(controls.tvwSets, "Set 2"));
  EXPECT_EQ(choice.m_lngSetID, 2) << "from its newest run";
  EXPECT_EQ(choice.m_strSetID, "");
  EXPECT_EQ(choice.m_strExtension, "002");
  EXPECT_EQ(choice.m_intRunCount, 0);

  tree.tvwSets_NodeClick(controls.tvwSets.Item(1));
  EXPECT_EQ(choice.m_lngSetID, 0);
  EXPECT_EQ(choice.m_strExtension, "");
}

TEST_F(SetTreeTest, RunChosenDuringALoadChangesLabelsOnly) {
  MakeCatalog({Row(1, 1, "003", "C:\\a.doc"), Row(2, 1, "003", "C:\\b.doc"), Row(3, 2, "001", "C:\\c.doc")});
  ui();
  DuringWalk(2, [this] { ChooseRun("2 001"); });
  ChooseRun("1 003");
  EXPECT_EQ(ui().lblSetName.Caption(), "Set 2\r\n up to \r\n2/15/2026 10:30:00 AM");
  EXPECT_EQ(ui().lblTreeCount.Caption(), "2 file(s).");
  TickAll();
  Apply();
  EXPECT_EQ(catalog->Marked(), (Ids{1, 2})) << "marks go to the run whose files are shown";
  ChooseRun("2 001");
  EXPECT_EQ(ui().lblTreeCount.Caption(), "1 file(s).");
}

TEST_F(SetTreeTest, AppendingAnArchiveTakesTheDetailTreesPlace) {
  MakeCatalog({Row(1, 1, "003", "C:\\a.doc")});
  controls::Node archive = ui().tvwSets.Add({}, "Archives", "Archive Sets");
  ui().tvwSets.Add(archive, "ArchAdd", "Append new Archive CD ...");
  ui().tbsOptions.UserSelect(2);
  Click("Append new Archive CD ...");
  EXPECT_TRUE(ui().frLoadCD.IsShown());
  EXPECT_EQ(ui().tbsOptions.SelectedIndex(), 1);
  for (auto& button : ui().cmdAction) EXPECT_FALSE(button.Enabled());
  ChooseRun();
  EXPECT_FALSE(ui().frLoadCD.Visible());
  for (auto& button : ui().cmdAction) EXPECT_TRUE(button.Enabled());
  Click("Append new Archive CD ...");
  Click("Online Backups");
  EXPECT_FALSE(ui().frLoadCD.Visible());
  EXPECT_TRUE(ui().cmdAction[3].Enabled());
}

}  // namespace
}  // namespace kxrestore::dialog_test
