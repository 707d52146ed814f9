// Parts of the dialog alone, and cases that a script cannot set up.
#include <random>

#include "catalog/type_census.h"
#include "dialog/advice.h"
#include "dialog/auto_select.h"
#include "dialog/list_memory.h"
#include "dialog/node_info.h"
#include "dialog/restore_list.h"
#include "dialog/set_detail.h"
#include "dialog/set_tree.h"
#include "dialog/sizes.h"
#include "dialog/type_list.h"
#include "engine/error_numbers.h"
#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::dialog_test {
namespace {

TEST(TypeCensus, ListsTheMostFrequentTypesFirstAfterTheirGroups) {
  catalog::TypeCensus census;
  for (const char* name : {"C:\\a.DOC", "C:\\b.doc", "C:\\c.Doc", "C:\\d.pdf", "C:\\e.xls", "C:\\f.xls",
                           "C:\\x.zzz", "C:\\noext", "C:\\dir.ext\\noext", "C:\\ends.", "C:\\p.\xC3\x84y",
                           "C:\\q.\xC3\xA4y", "", "mail.tar.gz"}) {
    census.Count(name);
  }
  census.Count(".GZ", 4);
  AutoSelect list("asFiles", nullptr, AutoSelect::Style::kTypes);
  dialog::ListTypes(census, list);
  Strings rows;
  for (std::size_t number = 1; number <= list.Count(); ++number) {
    const auto entry = list.At(number);
    rows.push_back((entry.isGroup ? "- " : "") + std::string(entry.name) + " " + std::to_string(entry.size));
  }
  EXPECT_EQ(rows, (Strings{"- Documents 6", "- Archives 5", ".gz 5", ".doc 3", ".\xC3\xA4y 2", ".xls 2",
                           ".pdf 1", ".zzz 1"}));
  EXPECT_EQ(list.At(4).extension, "Text document");
  list.SetTicked(1, true);
  EXPECT_EQ(list.TickedTypes(), ".doc;.xls;.pdf;");
}

TEST(TypeCensus, EachTypeEndsInASemicolon) {
  EXPECT_EQ(catalog::PatternsOf(".doc;x;;.xls"), (Strings{"*.doc", "*x", "*"}));
  EXPECT_EQ(catalog::PatternsOf(""), Strings{});
}

class PartsTest : public DialogTest {};

TEST_F(PartsTest, TheCheckBoxIsReadForEachTypeAndTheLastPatternBecomesTheExtension) {
  MakeCatalog({Live(1, "C:\\a.doc"), Live(2, "C:\\a.doc"), Live(3, "C:\\b.xls"), Live(4, "C:\\b.xls")});
  BareContext bare(platform.Get(), *workspace);
  auto& [parameters, controls, services, context] = bare;
  context.connection.DBName = catalog->Path();
  dialog::SetTree setTree(context);
  dialog::RestoreList restoreList(context, {});
  const dialog::AutoSelectPanel panel(context, setTree, restoreList);
  controls.panel[2].SetVisible(true);
  for (const char* type : {".doc", ".xls"}) {
    AutoSelect::Entry entry;
    entry.name = type;
    controls.asFiles.Add(entry, true);
  }
  DuringWalk(2, [&] {
    controls.chk2.UserClick();
    controls.optLookIn[2].SetValue(true);  // read before the first type only; there is no set 9
    context.choice.m_lngSetID = 9;
  });
  controls.cmdAuto[kApplyTypes].UserClick();
  EXPECT_EQ(catalog->Marked(), (Ids{1, 2, 4}));
  EXPECT_EQ(context.choice.m_strExtension, "*.xls");
}

TEST_F(PartsTest, EachKindOfNodeSetsTheChoice) {
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
  EXPECT_EQ(choose(set), "7|||0") << "the set of its newest run";
  EXPECT_FALSE(controls.optLookIn[2].Enabled()) << "the other panel's option does not change";
  EXPECT_EQ(choose(newest), "7|7|003|2");
  EXPECT_EQ(choose(older), "6|6|002|1");
  EXPECT_EQ(choose(set), "7||002|0") << "the extension is still that of the run";
  EXPECT_EQ(choose(root), "0|||0");
  EXPECT_EQ(tree.ListRunExtensions(newest), "\"003\", \"002\"");
  EXPECT_EQ(tree.ListRunExtensions(older), "\"002\"");

  // With more runs than a 16-bit count holds the choice is set, with the largest count.
  for (int run = 0; run < 32772; ++run) controls.tvwSets.Add(set, {}, "older", 0, "8 001");
  EXPECT_EQ(choose(newest), "7|7|003|32767");
  EXPECT_TRUE(controls.optLookIn[2].Enabled());
  EXPECT_THROW(tree.ListRunExtensions(newest), Error);
  EXPECT_EQ(choose(older.Next()), "8|8|001|32767");
}

TEST_F(PartsTest, DeepPathsUseMemoryPerNodeOnly) {
  MakeCatalog({});
  constexpr int kDepth = 1000, kChains = 100;
  dialog::PathNodes paths(ui().tvwDetails, {1, 2, 3});
  std::string deepest;
  for (int chain = 0; chain < kChains; ++chain) {
    std::string path = "C:\\";
    for (int level = 0; level < kDepth; ++level) path.append(std::to_string(chain)).append("\\");
    paths.AddPathNodes(path + "file", "tag");
    deepest = path;
  }
  controls::TreeView& tree = ui().tvwDetails;
  EXPECT_EQ(tree.Count(), 1u + kChains * (kDepth + 1u));
  EXPECT_LT(tree.MemoryUsed(), tree.Count() * 70u);
  EXPECT_EQ(tree.Item(deepest).Child().Text(), "file");
}

TEST_F(PartsTest, TheCountOfTickedSiblingsIs16BitAndItsOverflowOnlyKeepsTheParentUnticked) {
  MakeCatalog({Live(1, "D:\\1.txt")});
  ChooseRun("1 001");
  controls::Node drive = Detail("D:\\"), folder = ui().tvwDetails.Add(drive, {}, "folder");
  const controls::Node below = ui().tvwDetails.Add(folder, {}, "below");
  controls::Node last;
  for (int file = 0; file < 32767; ++file) {
    last = ui().tvwDetails.Add(drive, {}, "file");
    last.SetChecked(true);
  }
  ui().tvwDetails.UserCheck(last, true);
  EXPECT_TRUE(drive.Checked()) << "32,767 siblings can be counted";
  drive.SetChecked(false);
  ui().tvwDetails.UserCheck(folder, true);
  EXPECT_FALSE(drive.Checked());
  EXPECT_TRUE(below.Checked());
}

TEST_F(PartsTest, NodesAddedDuringAWalkAreNotVisited) {
  MakeCatalog({Live(1, "C:\\a\\1.txt"), Live(2, "C:\\2.txt")});
  ChooseRun("1 001");
  controls::Node later;
  const auto add = [&] {
    later = ui().tvwDetails.Add({}, {}, "later", 0, "C:\\2.txt");
    ui().tvwDetails.Add(later, {}, "below it");
    later.SetChecked(true);
  };
  DuringWalk(1, add);
  ui().cmdAction[kExpandAll].UserClick();
  EXPECT_FALSE(later.Expanded());
  EXPECT_TRUE(Detail("a").Expanded());
  ChooseRun("1 001");
  Tick("1.txt");
  DuringWalk(1, add);
  Apply();
  EXPECT_EQ(catalog->Marked(), Ids{1});
}

TEST(PluginImage, DependsOnTheTextThenOnThePath) {
  // The text is compared first, case-sensitively, then the path, ignoring case, in the order of the table.
  const struct {
    const char *text, *path;
    int image;
  } cases[] = {{"Exchange Server", "Public Folders", 7},
               {"Public Folders", "MailBoxes", 8},
               {"Address Lists", "Public Folders", 10},
               {"MailBoxes", "Public Folders", 11},
               {"public folders", "x\\PUBLIC FOLDERS\\MailBoxes\\Address Lists", 9},
               {"mailboxes", "x\\mailboxes\\address lists", 10},
               {"address lists", "x\\mailBOXES", 12},
               {"anything", "C:\\plain", 2}};
  for (const auto& [text, path, image] : cases) EXPECT_EQ(dialog::PluginImage(text, path), image) << text;
}

TEST(Sizes, SizesHaveUnitsForPeople) {
  const platform::FixedRegional regional;
  const auto said = [&](std::int64_t bytes) { return dialog::SizeInPeoplesUnits(regional, bytes); };
  EXPECT_EQ(said(0), "0 bytes");
  EXPECT_EQ(said(1023), "1,023 bytes");
  EXPECT_EQ(said(1024), "1 KB");
  EXPECT_EQ(said(1024 * 1024 - 1), "1 MB");
  EXPECT_EQ(said(1'503'238'554), "1.4 GB");
  EXPECT_EQ(said(std::int64_t{5000} << 40), "5,000 TB");
}

TEST_F(PartsTest, AnErrorEndsInALineOfAdvice) {
  MakeCatalog({});
  catalog->Execute("ALTER TABLE Catalog RENAME TO Gone");
  Click(kRefresh);
  ASSERT_EQ(desktop.messages.size(), 1U);
  const std::string text = desktop.messages[0].text;
  EXPECT_TRUE(text.starts_with("(3078) ")) << text;
  EXPECT_TRUE(text.ends_with("\n\n" + Say(dialog::AdviceFor(3078)))) << text;
  desktop.messages.clear();
  EXPECT_EQ(dialog::AdviceFor(engine::error_number::kFileInUse), Phrase::kAdviceWait);
  EXPECT_EQ(dialog::AdviceFor(error_number::kOutOfMemory), Phrase::kAdviceMemory);
}

}  // namespace
}  // namespace kxrestore::dialog_test
