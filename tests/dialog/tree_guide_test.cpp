// What the trees tell and offer beside their nodes: the third state, badges, tips, order, menus, the state of
// a day.
#include "base/phrases.h"
#include "dialog/node_info.h"
#include "dialog/sizes.h"
#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::dialog_test {
namespace {

class TreeGuideTest : public DialogTest {
 protected:
  void SetUp() override {
    std::vector<sample::FileRow> rows{
        Row(1, 1, "003", "C:\\Data\\Archive 10\\x.doc"), Row(2, 1, "003", "C:\\Data\\Archive 2\\y.doc"),
        Row(3, 1, "003", "C:\\Data\\Archive 2\\z.doc"),  Row(4, 1, "003", "C:\\Data\\a file.doc"),
        Row(5, 1, "002", "C:\\Data\\Archive 2\\y.doc"),  Row(6, 1, "003", "D:\\[1]\\q.doc")};
    rows[1].origSize = 1'536;
    rows[2].origSize = 3 << 20;
    rows.push_back(PluginRow(7, "System State", "C:\\Data\\registry", "registry"));
    MakeCatalog(rows);
    ChooseRun();
  }

  // The texts of a menu on a node, those that are disabled in brackets; `choose` is chosen.
  Strings Menu(controls::TreeView& tree, std::string_view node, std::string_view choose = {}) {
    controls::Menu menu(NodeOf(tree, node).Index());
    tree.UserMenu(menu);
    Strings texts;
    std::size_t chosen = menu.Items().size();
    for (std::size_t i = 0; i < menu.Items().size(); ++i) {
      const auto& item = menu.Items()[i];
      if (!choose.empty() && item.text == choose) chosen = i;
      texts.push_back(item.enabled ? item.text : "[" + item.text + "]");
    }
    if (!choose.empty()) {
      EXPECT_LT(chosen, menu.Items().size()) << choose;
    }
    menu.UserChoose(chosen);
    return texts;
  }
  Strings Mixed() {
    Strings mixed;
    for (std::uint32_t i = 1; i <= ui().tvwDetails.Count(); ++i) {
      const controls::Node node = ui().tvwDetails.Item(i);
      if (node.Mixed()) mixed.push_back(std::string(node.Text()) + (node.Checked() ? "+" : "-"));
    }
    return mixed;
  }
};

TEST_F(TreeGuideTest, AFolderOfWhichOnlySomeIsTickedLooksSo) {
  Tick("y.doc");
  EXPECT_EQ(Mixed(), (Strings{"C:\\+", "Data+", "Archive 2+"}));
  Tick("z.doc");
  EXPECT_EQ(Mixed(), (Strings{"C:\\+", "Data+"}));
  Tick("C:\\");
  EXPECT_EQ(Mixed(), Strings());
  Tick("a file.doc", false);
  EXPECT_EQ(Mixed(), (Strings{"C:\\+", "Data+"}));
  ui().cmdAction[kClearAll].UserClick();
  EXPECT_EQ(Mixed(), Strings());
}

TEST_F(TreeGuideTest, NamesStandAsPeopleCountAndIndexesStay) {
  const controls::Node data = Detail("Data");
  const auto first = data.Child().Index();
  EXPECT_EQ(data.Child().Text(), "Archive 10");
  data.Parent().SetExpanded(true);
  ui().tvwDetails.UserExpand(data, true);
  Strings names;
  for (controls::Node child = data.Child(); child; child = child.Next()) names.emplace_back(child.Text());
  EXPECT_EQ(names, (Strings{"Archive 2", "Archive 10", "a file.doc"}));
  EXPECT_EQ(ui().tvwDetails.Item(first).Text(), "Archive 10");
  // What the walk marks does not depend on it.
  TickAll();
  Apply();
  EXPECT_EQ(catalog->Marked(), (Ids{1, 2, 3, 4, 6, 7}));
}

TEST_F(TreeGuideTest, TipsTellSizeDateAndMarkOfAFile) {
  controls::TreeView& tree = ui().tvwDetails;
  EXPECT_EQ(tree.UserTip(Detail("y.doc")), "C:\\Data\\Archive 2\\y.doc\n1.5 KB\n3/1/2026 10:00:00 AM");
  Tick("y.doc");
  Apply();
  EXPECT_TRUE(tree.UserTip(Detail("y.doc")).ends_with("\nMarked to restore already."));
  EXPECT_TRUE(tree.Badge(Detail("y.doc")));
  EXPECT_FALSE(tree.Badge(Detail("z.doc")));
  EXPECT_FALSE(tree.Badge(Detail("Archive 2")));
  ChooseRun("1 002");  // the same name, another run
  EXPECT_FALSE(tree.Badge(Detail("y.doc")));

  // A catalog that cannot be asked is asked once, and nothing is said of it.
  catalog->Execute("ALTER TABLE Catalog RENAME TO Gone");
  EXPECT_EQ(tree.UserTip(Detail("y.doc")), "C:\\Data\\Archive 2\\y.doc");
  catalog->Execute("ALTER TABLE Gone RENAME TO Catalog");
  EXPECT_EQ(tree.UserTip(Detail("y.doc")), "C:\\Data\\Archive 2\\y.doc");
}

TEST_F(TreeGuideTest, AFoldersSumIsToldOnceAskedFor) {
  controls::TreeView& tree = ui().tvwDetails;
  Tick("y.doc");
  const std::string before = tree.UserTip(Detail("Archive 2"));
  EXPECT_EQ(before, "C:\\Data\\Archive 2\n2 files, 1 of them ticked\n" + Say(Phrase::kSumUpHint));
  Menu(tree, "Archive 2", "&Add up the sizes");
  EXPECT_EQ(ui().lblProgress.Caption(), "Archive 2: 2 files, 3 MB");
  EXPECT_TRUE(ui().picProgress.IsShown());
  EXPECT_EQ(tree.UserTip(Detail("Archive 2")), "C:\\Data\\Archive 2\n2 files, 1 of them ticked\n3 MB");
  EXPECT_TRUE(ui().picProgress.IsShown());  // a tip is no action
  Menu(tree, "[1]", "&Add up the sizes");
  EXPECT_TRUE(ui().lblProgress.Caption().starts_with("[1]: 1 file, ")) << ui().lblProgress.Caption();
  Menu(tree, "System State", "&Add up the sizes");
  EXPECT_TRUE(ui().lblProgress.Caption().starts_with("System State: 1 file, "));
  EscapeAt(2);
  Menu(tree, "C:\\", "&Add up the sizes");
  EXPECT_FALSE(ui().picProgress.IsShown());
}

TEST_F(TreeGuideTest, TheMenuTicksExpandsAndCopies) {
  controls::TreeView& tree = ui().tvwDetails;
  EXPECT_EQ(Menu(tree, "Archive 2", "&Tick this branch"),
            (Strings{"&Tick this branch", "[&Untick this branch]", "", "&Expand all below",
                     "C&ollapse all below", "", "&Add up the sizes", "&Copy the path"}));
  EXPECT_TRUE(Detail("z.doc").Checked());
  EXPECT_TRUE(Detail("Data").Mixed());
  EXPECT_EQ(Menu(tree, "z.doc", "&Untick"),
            (Strings{"[&Tick]", "&Untick", "", "&Copy the path", "", "All &versions of this file"}));
  EXPECT_EQ(Menu(tree, "Archive 2", "&Tick this branch")[1], "&Untick this branch");  // it is ticked in part
  Menu(tree, "C:\\", "&Expand all below");
  EXPECT_TRUE(Detail("Archive 10").Expanded());
  EXPECT_FALSE(Detail("D:\\").Expanded());
  Menu(tree, "Data", "C&ollapse all below");
  EXPECT_FALSE(Detail("Archive 10").Expanded());
  EXPECT_TRUE(Detail("C:\\").Expanded());
  Menu(tree, "q.doc", "&Copy the path");
  EXPECT_EQ(desktop.clipboard, "D:\\[1]\\q.doc");
  Menu(tree, "C:\\", "&Copy the path");
  EXPECT_EQ(desktop.clipboard, "C:\\");
  controls::Menu nothing;
  tree.UserMenu(nothing);
  EXPECT_TRUE(nothing.Empty());
}

TEST_F(TreeGuideTest, TheStateOfADayIsTheLatestRunUpToIt) {
  controls::TreeView& sets = ui().tvwSets;
  const std::string item = Say(Phrase::kMenuChooseDay);
  const auto choose = [&](std::string_view node, platform::CivilTime day) {
    desktop.days = {day};
    Menu(sets, node, item);
    return std::string(sets.SelectedItem().Tag());
  };
  const std::string set(NodeOf(sets, "1 003").Parent().Text());
  EXPECT_EQ(choose(set, {2026, 2, 1}), "1 002");  // its run of 2:25 in the afternoon
  EXPECT_EQ(desktop.dayAsked, "Show " + set + " as it was at the end of this day: 1/1/2026-11/16/2026");
  EXPECT_EQ(ui().tvwDetails.Count(), 4U);
  EXPECT_TRUE(sets.SelectedItem().Bold());
  EXPECT_EQ(choose("1 002", {2026, 1, 31}), "1 001");  // on a run it is its set
  EXPECT_EQ(choose(set, {2026, 11, 16}), "1 003");
  EXPECT_EQ(choose(set, {2025, 12, 31}), "1 003");  // nothing so old: all stays
  ExpectReports({": " + set + " has no backup of that day or before. Its oldest one is of 1/1/2026."});
  desktop.days.clear();
  Menu(sets, set, item);
  EXPECT_EQ(sets.SelectedItem().Tag(), "1 003");
  EXPECT_EQ(Menu(sets, "Online Backups"), Strings());
}

TEST_F(TreeGuideTest, SizesAreSaidInPeoplesUnits) {
  const platform::FixedRegional regional;
  const auto said = [&](std::int64_t bytes) { return dialog::SizeInPeoplesUnits(regional, bytes); };
  EXPECT_EQ(said(0), "0 bytes");
  EXPECT_EQ(said(1023), "1,023 bytes");
  EXPECT_EQ(said(1024), "1 KB");
  EXPECT_EQ(said(1024 * 1024 - 1), "1 MB");
  EXPECT_EQ(said(1'503'238'554), "1.4 GB");
  EXPECT_EQ(said(std::int64_t{5000} << 40), "5,000 TB");
}

}  // namespace
}  // namespace kxrestore::dialog_test
