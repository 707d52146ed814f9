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
  Load({Live(1, "readme.txt"), Live(2, "\\\\server\\share\\x.txt"), Live(3, "C:\\Folder\\"), Live(4, "x"),
        Live(5, "C:\\\\double\\\\y.txt"), Live(6, "C:\\"), Live(7, ""), Live(8, "\xff\xfe\\bad\xc3\\z"),
        emptyLongPath},
       {{1, ""}});
  Ids files;
  for (int index = 1; index <= static_cast<int>(ui().tvwDetails.Count()); ++index) {
    const controls::Node node = ui().tvwDetails.Item(index);
    if (node.Tag().empty()) continue;
    files.insert(index);
    EXPECT_FALSE(node.Text().empty()) << node.Tag();
  }
  EXPECT_EQ(files.size(), 8u);
  EXPECT_EQ(Detail("named.txt").Tag(), "C:\\Folder\\named.txt");
  EXPECT_EQ(Detail("y.txt").Parent().Text(), "double");
  EXPECT_EQ(Detail("x.txt").Parent().Text(), "share");
  EXPECT_EQ(ui().lblTreeCount.Caption(), "9 file(s).");
}

TEST_F(SetDetailTest, PluginEntriesStandUnderTheirHeadings) {
  MakeCatalog({PluginRow(1, "System State", "C:\\Windows\\registry.dat", "registry"),
               PluginRow(2, "SQL Server", "master\\full.bak", "master"),
               PluginRow(3, "Exchange Server", "Store\\mailboxes\\Ann", "Ann"),
               PluginRow(4, "Exchange Server Storage", "Store\\Public Folders\\News", "News"),
               PluginRow(5, "Exchange Server", "Store\\Address Lists\\All", "All"),
               PluginRow(6, "Exchange Server", "Store\\whole", "Exchange Server"),
               PluginRow(7, "Exchange Serve", "C:\\odd\\x", "x")});
  ChooseRun();
  EXPECT_EQ(Shown(),
            (Strings{"System State", " registry.dat {C:\\Windows\\registry.dat}", "Exchange Serve",
                     " x {C:\\odd\\x}", "Exchange Server", " Address Lists",
                     "  All {Store\\Address Lists\\All}", " Public Folders",
                     "  News {Store\\Public Folders\\News}", " MailBoxes", "  Ann {Store\\mailboxes\\Ann}",
                     " Exchange Server {Exchange Server}", "SQL Server", " full.bak {master\\full.bak}"}));
  const std::map<std::string, int> images = {{"MailBoxes", 11},   {"Ann", 12},         {"Public Folders", 8},
                                             {"News", 9},         {"All", 10},         {"Exchange Server", 7},
                                             {"System State", 5}, {"registry.dat", 5}, {"SQL Server", 13},
                                             {"full.bak", 2}};
  for (const auto& [text, image] : images) EXPECT_EQ(Detail(text).Image(), image) << text;

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
  ClickAction(kExpandAll);
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
  Tick("a");
  EscapeAt(3);
  Apply();
  EXPECT_EQ(ui().asRestoreList.Count(), 0u) << "nothing is listed after a stop";
  EXPECT_TRUE(ui().lblTreeCount.Visible());
  EXPECT_FALSE(form.StopRequested);
  Apply();
  EXPECT_FALSE(ui().lblTreeCount.Visible());
  EXPECT_EQ(ui().lblTreeCount.Caption(), "Scanning 4");
  EXPECT_EQ(catalog->Marked(), (Ids{1, 2}));

  // The aggregate goes by File, in every version; what was marked stays.
  Tick("a", false);
  ui().tvwDetails.UserCheck(Detail("Exchange Server").Child(), true);
  Apply();
  EXPECT_EQ(catalog->Marked(), (Ids{1, 2, 4, 5}));
}

TEST_F(SetDetailTest, ALoadThatIsStoppedShowsWhatThereIs) {
  Load({Live(1, "C:\\a.doc"), Live(2, "C:\\b.doc"), Live(3, "C:\\c.doc")});
  EscapeAt(3);
  ChooseRun("1 001");
  EXPECT_EQ(ui().lblTreeCount.Caption(), "2 file(s).");
  EXPECT_TRUE(ui().form.IsOpen());
  ChooseRun("1 001");
  EXPECT_EQ(ui().lblTreeCount.Caption(), "3 file(s).");
}

}  // namespace
}  // namespace kxrestore::dialog_test
