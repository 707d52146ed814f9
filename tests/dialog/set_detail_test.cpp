// The files of the chosen run as a tree, and its buttons.
#include "dialog/set_detail.h"

#include <map>

#include "tests/dialog/dialog_fixture.h"

namespace kxrestore::dialog_test {
namespace {

class SetDetailTest : public DialogTest {
 protected:
  void Load(const std::vector<sample::FileRow>& rows,
            const std::vector<sample::LongPathRow>& longPaths = {}) {
    MakeCatalog(rows, Runs(), longPaths);
    ChooseRun("1 001");
  }
  Strings Shown() { return Outline(ui().tvwDetails.FirstRoot()); }
  void ClickAction(ActionButton button) { ui().cmdAction[button].UserClick(); }
};

TEST_F(SetDetailTest, FoldersAreOneNodeEachAndFilesOneARow) {
  sample::FileRow longRow = Live(4, "C:\\DATA~1\\LONG~1.TXT");
  longRow.longPathId = 7;
  Load({Live(1, "C:\\Data\\Reports\\a.doc"), Live(2, "C:\\Data\\b.doc"),
        Live(3, "C:\\Data\\Reports\\it's.doc"), longRow, Dead(Live(5, "C:\\Data\\dead.txt")),
        Row(6, 1, "002", "C:\\Data\\other.txt")},
       {{7, "D:\\Très long\\grüße.txt"}});
  const Strings expected{"D:\\",
                         " Très long",
                         "  grüße.txt {C:\\DATA~1\\LONG~1.TXT}",
                         "C:\\",
                         " Data",
                         "  Reports",
                         "   a.doc {C:\\Data\\Reports\\a.doc}",
                         "   it's.doc {C:\\Data\\Reports\\it's.doc}",
                         "  b.doc {C:\\Data\\b.doc}"};
  EXPECT_EQ(Shown(), expected);
  EXPECT_EQ(ui().lblTreeCount.Caption(), "4 file(s).");
  EXPECT_EQ(Detail("a.doc").Image(), ui().imlRestore.Index("file"));
  ChooseRun("1 001");
  EXPECT_EQ(Shown(), expected) << "choosing a run anew starts from an empty tree";

  catalog->Execute("DROP TABLE Catalog");
  ChooseRun("1 001");
  ExpectReports({"LoadBackupSetDetail: (3078) "});
  EXPECT_EQ(ui().tvwDetails.Count(), 0u);
}

TEST_F(SetDetailTest, OddPathsStayWithinReach) {
  sample::FileRow emptyLongPath = Live(9, "C:\\Folder\\named.txt");
  emptyLongPath.longPathId = 1;
  Load({Live(1, "r"), Live(2, "\\\\server\\share\\x.txt"), Live(3, "C:\\Folder\\"), Live(4, "readme.txt"),
        Live(5, "C:\\\\double\\\\y.txt"), Live(6, "C:\\"), Live(7, ""), Live(8, "\xff\xfe\\bad\xc3\\z"),
        emptyLongPath, Live(10, "C:"), Live(11, "C:\\P\\a.txt"), Live(12, "a\\b.txt"), Live(13, "\\"),
        Live(14, "red\\deep\\c.txt"), Live(15, "\\\\server\\share\\")},
       {{1, ""}});
  // A path of less than three characters is a drive text of its own and holds nothing else; a folder that is
  // an entry stands inside itself.
  EXPECT_EQ(Shown(), (Strings{"C:",
                              " C: {C:}",
                              "C:\\",
                              " (this folder) {C:\\}",
                              " Folder",
                              "  (this folder) {C:\\Folder\\}",
                              "  named.txt {C:\\Folder\\named.txt}",
                              " P",
                              "  a.txt {C:\\P\\a.txt}",
                              " double",
                              "  y.txt {C:\\\\double\\\\y.txt}",
                              "\\",
                              " (this folder) {\\}",
                              "\\\\s",
                              " server",
                              "  share",
                              "   (this folder) {\\\\server\\share\\}",
                              "   x.txt {\\\\server\\share\\x.txt}",
                              "a\\b",
                              " b.txt {a\\b.txt}",
                              "r",
                              " r {r}",
                              "rea",
                              " readme.txt {readme.txt}",
                              "red",
                              " deep",
                              "  c.txt {red\\deep\\c.txt}",
                              "\xff\xfe\\",
                              " bad\xc3",
                              "  z {\xff\xfe\\bad\xc3\\z}"}));
  EXPECT_EQ(ui().lblTreeCount.Caption(), "15 file(s).");
  EXPECT_EQ(Detail("C:\\Folder\\").Image(), ui().imlRestore.Index("cfolder"));

  // It is marked for itself, or with its folder.
  Tick("C:\\Folder\\");
  Apply();
  EXPECT_EQ(catalog->Marked(), (Ids{3}));
  Tick("Folder");
  Apply();
  EXPECT_EQ(catalog->Marked(), (Ids{3, 9}));
}

TEST_F(SetDetailTest, DeepPathsCostTheirNodesOnly) {
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
  controls::Node folder = tree.Item(deepest);
  EXPECT_EQ(folder.Key(), deepest);
  EXPECT_EQ(folder.Child().Text(), "file");
  Tick("C:\\");
  EXPECT_TRUE(folder.Child().Checked());
  tree.UserCheck(folder, false);
  EXPECT_FALSE(tree.Item("C:\\99\\").Checked());
  EXPECT_TRUE(Detail("C:\\").Checked()) << "the other chains are";
}

TEST_F(SetDetailTest, PluginEntriesStandUnderTheirHeadings) {
  MakeCatalog({PluginRow(1, "System State", "C:\\Windows\\registry.dat", "registry"),
               PluginRow(2, "SQL Server", "master\\full.bak", "master"),
               PluginRow(3, "Exchange Server", "Store\\mailboxes\\Ann", "Ann"),
               PluginRow(4, "Exchange Server Storage", "Store\\Public Folders\\News", "News"),
               PluginRow(5, "Exchange Server", "Store\\Address Lists\\All", "All"),
               PluginRow(6, "Exchange Server", "Store\\whole", "Exchange Server"),
               PluginRow(7, "Exchange Serve", "C:\\odd\\x", "x"),
               PluginRow(8, "System State", "C:\\Windows\\Exchange Server", "state"),
               PluginRow(9, "Exchange Serve", "", "Exchange Server"),
               PluginRow(10, "", "C:\\Exchange Server", "plain"),
               PluginRow(11, "", "C:\\Exchange Server\\x", "inside")});
  ChooseRun();
  EXPECT_EQ(Shown(), (Strings{"Exchange Serve",
                              " Exchange Server {Exchange Server}",
                              " x {C:\\odd\\x}",
                              "C:\\",
                              " Exchange Server {plain}",
                              " Exchange Server",
                              "  x {C:\\Exchange Server\\x}",
                              "System State",
                              " Exchange Server {state}",
                              " registry.dat {C:\\Windows\\registry.dat}",
                              "Exchange Server",
                              " Address Lists",
                              "  All {Store\\Address Lists\\All}",
                              " Public Folders",
                              "  News {Store\\Public Folders\\News}",
                              " MailBoxes",
                              "  Ann {Store\\mailboxes\\Ann}",
                              " Exchange Server {Exchange Server}",
                              "SQL Server",
                              " full.bak {master\\full.bak}"}))
      << "a node with the mail server's name carries File";
  const std::map<std::string, int> images = {{"MailBoxes", 11},   {"Ann", 12},        {"Public Folders", 8},
                                             {"News", 9},         {"All", 10},        {"System State", 5},
                                             {"registry.dat", 5}, {"SQL Server", 13}, {"full.bak", 2}};
  for (const auto& [text, image] : images) EXPECT_EQ(Detail(text).Image(), image) << text;
  EXPECT_EQ(Detail("MailBoxes").Root().Image(), 7);

  // The text in its own case first, then what the path holds in any, in the order of the table.
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

TEST_F(SetDetailTest, TicksAndExpansionFollowTheUser) {
  auto state = PluginRow(5, "System State", "x\\5.dat", "5.dat");
  state.extension = "001";
  Load({Live(1, "C:\\a\\1.txt"), Live(2, "C:\\a\\2.txt"), Live(3, "C:\\b\\3.txt"), Live(4, "D:\\4.txt"),
        state});
  Tick("1.txt");
  EXPECT_TRUE(Detail("C:\\").Checked());
  EXPECT_FALSE(Detail("b").Checked());
  Tick("b");
  EXPECT_TRUE(Detail("3.txt").Checked());
  // Drives become folders by it, too.
  const auto imageKey = [&](const char* text) {
    return ui().imlRestore.Keys()[static_cast<std::size_t>(Detail(text).Image() - 1)];
  };
  EXPECT_EQ(imageKey("C:\\") + " " + imageKey("b") + " " + imageKey("3.txt"), "drive cfolder file");
  DuringWalk(1, [this] { ui().tvwDetails.Add(ui().tvwDetails.Add({}, {}, "later"), {}, "below it"); });
  ClickAction(kExpandAll);
  EXPECT_FALSE(Detail("later").Expanded());
  EXPECT_TRUE(Detail("b").Expanded());
  EXPECT_FALSE(Detail("3.txt").Expanded());
  EXPECT_EQ(imageKey("C:\\") + " " + imageKey("b") + " " + imageKey("3.txt"), "ofolder ofolder file");
  ClickAction(kCollapseAll);
  EXPECT_FALSE(Detail("C:\\").Expanded());
  EXPECT_EQ(imageKey("C:\\") + " " + imageKey("b") + " " + imageKey("3.txt"), "cfolder cfolder file");
  for (const char* text : {"4.txt", "5.dat"}) Tick(text);
  ClickAction(kClearAll);
  for (int index = 1; index <= static_cast<int>(ui().tvwDetails.Count()); ++index) {
    EXPECT_FALSE(ui().tvwDetails.Item(index).Checked()) << ui().tvwDetails.Item(index).Text();
  }

  // The count of ticked siblings ends at 16 bits, and with it the climb; what is below follows all the same.
  const controls::Node drive = Detail("D:\\"), folder = ui().tvwDetails.Add(drive, {}, "folder");
  const controls::Node below = ui().tvwDetails.Add(folder, {}, "below");
  for (int file = 0; file < 32767; ++file) ui().tvwDetails.Add(drive, {}, "file").SetChecked(true);
  ui().tvwDetails.UserCheck(folder, true);
  EXPECT_FALSE(drive.Checked());
  EXPECT_TRUE(below.Checked());
}

TEST_F(SetDetailTest, ApplyMarksTickedFilesAndCanBeStopped) {
  const auto aggregate = [](std::int64_t id, const char* path) {
    auto row = PluginRow(id, "Exchange Server", path, "Exchange Server");
    row.extension = "001";
    return row;
  };
  Load({Live(1, "C:\\a\\it's.txt"), Live(2, "C:\\a\\2.txt"), Live(3, "C:\\b\\3.txt"),
        aggregate(4, "Store\\whole"), Dead(aggregate(5, "Store\\before"))});
  catalog->Execute("UPDATE Catalog SET Restore = 1 WHERE ID = 3");
  Apply();
  EXPECT_EQ(Listed(), Strings{"C:\\b\\3.txt"}) << "the list is filled though nothing is ticked";
  catalog->Execute("UPDATE Catalog SET Restore = 0");
  Tick("a");
  ui().lblTreeCount.SetVisible(false);
  EscapeAt(3);
  Apply();
  EXPECT_EQ(ui().asRestoreList.Count(), 1u) << "a stop leaves the list as it was";
  EXPECT_TRUE(ui().lblTreeCount.Visible());
  EXPECT_FALSE(form.parameters.StopRequested);
  // A node that comes while it walks is not visited.
  DuringWalk(1, [this] { ui().tvwDetails.Add({}, {}, "later", 0, "C:\\b\\3.txt").SetChecked(true); });
  Apply();
  EXPECT_FALSE(ui().lblTreeCount.Visible());
  EXPECT_EQ(ui().lblTreeCount.Caption(), "Scanning 4");
  EXPECT_EQ(catalog->Marked(), (Ids{1, 2}));

  // The aggregate goes by File, in every version; what was marked stays.
  ClickAction(kClearAll);
  ui().tvwDetails.UserCheck(Detail("Exchange Server").Child(), true);
  Apply();
  EXPECT_EQ(catalog->Marked(), (Ids{1, 2, 4, 5}));
}

TEST_F(SetDetailTest, CountsHaveNoSeparators) {
  Load({});
  catalog->Execute(
      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1001) INSERT INTO Catalog "
      "(ID, "
      "SetNameID, Extension, Filename, OrigName, Restore, Status) SELECT i, 1, '001', 'C:\\' || i, 'C:\\' || "
      "i, "
      "0, 2 FROM n");
  ChooseRun("1 001");
  EXPECT_EQ(ui().lblTreeCount.Caption(), "1001 file(s).");
  TickAll();
  Apply();
  EXPECT_EQ(ui().lblTreeCount.Caption(), "Scanning 1001");
  EXPECT_EQ(Selected(), "1001 file(s) selected");
  ShowTab(2);
  Find("C:");
  EXPECT_EQ(ui().lblSearchCount.Caption(), "1001 File(s)");
}

TEST_F(SetDetailTest, APartOfARunDoesNotLookLikeTheWhole) {
  Load({Live(1, "C:\\a.doc"), Live(2, "C:\\b.doc"), Live(3, "C:\\c.doc")});
  EscapeAt(3);
  ChooseRun("1 001");
  EXPECT_EQ(ui().lblTreeCount.Caption(), "Stopped after 2 file(s)");
  EXPECT_TRUE(ui().form.IsOpen());
  ChooseRun("1 001");
  EXPECT_EQ(ui().lblTreeCount.Caption(), "3 file(s).");
  catalog->HideTable();
  ChooseRun("1 001");
  ExpectReports({"LoadBackupSetDetail: ("});
  EXPECT_EQ(ui().lblTreeCount.Caption(), "Failed after 0 file(s)");
}

TEST_F(SetDetailTest, ASetBeyondThirtyTwoBitsIsAnOverflowAndNothingOfItIsMarked) {
  MakeCatalog({Row(1, 1, "003", "C:\\a.doc"), Row(2, 3'000'000'000, "003", "C:\\a.doc")});
  catalog->Execute(
      "INSERT INTO SetNames VALUES (3000000000, 'Large'); INSERT INTO BackupAudit (SetNameID, DateStamp, "
      "Extension, "
      "Permanent, Status) VALUES (3000000000, '2026-04-01 00:00:00', '003', 0, 6)");
  ChooseRun();
  ChooseNode("3000000000 003");
  ExpectReports({"LoadBackupSetDetail: (6) Overflow"});
  EXPECT_EQ(ui().tvwDetails.Count(), 0u) << "nor are another set's files shown under its name";
  ShowTab(2);
  ui().optLookIn[0].UserClick();
  ui().cboMask.SetText("a");
  ui().cmdSearch[kFind].UserClick();
  ExpectReports({"AdvancedSearch: (6) Overflow"});
  ChooseNode("Large");
  ExpectReports({"tvwSets.NodeClick: (6) Overflow"});
}

// What is not what its column should hold costs only itself: it is listed, and counted where it cannot be
// marked.
TEST_F(SetDetailTest, OddRowsAreListedAndCountedWhereTheyCannotBeMarked) {
  Load({Live(1, "C:\\1.txt"), Live(2, "C:\\2.txt"), Live(3, "C:\\3.txt"), Live(4, "C:\\4.txt"),
        Live(5, "C:\\5.txt")});
  catalog->Execute(
      "INSERT INTO LongPaths VALUES (7, 'C:\\long.txt'), (8, ''); UPDATE Catalog SET LongPathID = 7 WHERE ID "
      "IN (2, 3);"
      "UPDATE Catalog SET LongPathID = 8, OrigSize = 'much' WHERE ID = 4; UPDATE Catalog SET Filename = NULL "
      "WHERE ID "
      "= 2; UPDATE Catalog SET Filename = x'00ff' WHERE ID = 3; UPDATE Catalog SET Filename = 5 WHERE ID = "
      "5");
  ChooseRun("1 001");
  EXPECT_EQ(ui().lblTreeCount.Caption(), "5 file(s).");
  TickAll();
  Apply();
  ExpectReports({"AddToSetSelections: 2 file(s) could not be marked."});
  EXPECT_EQ(catalog->Marked(), (Ids{1, 4, 5}));
  EXPECT_EQ(Listed(), (Strings{"5", "C:\\1.txt", "C:\\4.txt"}));
  EXPECT_FALSE(ui().asRestoreList.At(2).sizeKnown && ui().asRestoreList.At(2).name == "C:\\4.txt");
  EXPECT_TRUE(ui().cmdRestore[kRestoreNow].Enabled());
}

}  // namespace
}  // namespace kxrestore::dialog_test
