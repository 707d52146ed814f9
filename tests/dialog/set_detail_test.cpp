#include "dialog/set_detail.h"

#include <algorithm>
#include <map>

#include "dialog/detail_actions.h"
#include "tests/dialog/panel_fixture.h"

namespace kxrestore::dialog {
namespace {

using catalog_test::CatalogFile;
using catalog_test::Live;

class SetDetailTest : public PanelTest {
 protected:
  void Load(const CatalogFile& file) {
    UseCatalog(file.Path());
    if (!m_run) {
      m_run = ui.tvwSets.Add({}, "run", "run");
      m_run.SetTag("1 001");
    }
    context.choice.m_lngSetID = 1;
    m_detail.LoadBackupSetDetail(m_run);
  }

  // Every node as "parent > text", with its tag in brackets when it has one.
  std::vector<std::string> Outline() {
    std::vector<std::string> lines;
    for (int index = 1; index <= static_cast<int>(ui.tvwDetails.Count()); ++index) {
      const controls::Node node = ui.tvwDetails.Item(index);
      std::string line = node.Parent() ? std::string(node.Parent().Text()) + " > " : std::string();
      line.append(node.Text());
      if (!node.Tag().empty()) line.append(" [").append(node.Tag()).append("]");
      lines.push_back(line);
    }
    std::sort(lines.begin(), lines.end());  // engines hand out rows in an order of their own
    return lines;
  }
  static std::vector<std::string> Sorted(std::vector<std::string> lines) {
    std::sort(lines.begin(), lines.end());
    return lines;
  }
  controls::Node NodeWithText(std::string_view text) {
    for (int index = 1; index <= static_cast<int>(ui.tvwDetails.Count()); ++index) {
      const controls::Node node = ui.tvwDetails.Item(index);
      if (node.Text() == text) return node;
    }
    return {};
  }

  SetDetail m_detail{context};
  controls::Node m_run;
};

sample::FileRow PluginRow(std::int64_t id, std::string plugin, std::string path, std::string file) {
  sample::FileRow row = Live(id, std::move(path));
  row.plugin = std::move(plugin);
  row.file = std::move(file);
  return row;
}

TEST_F(SetDetailTest, FoldersAreOneNodeEachAndFilesOneARow) {
  sample::FileRow longRow = Live(4, "C:\\DATA~1\\LONG~1.TXT");
  longRow.longPathId = 7;
  sample::FileRow dead = Live(5, "C:\\Data\\dead.txt");
  dead.status = 1;
  sample::FileRow otherRun = Live(6, "C:\\Data\\other.txt");
  otherRun.extension = "002";
  const CatalogFile file({Live(1, "C:\\Data\\Reports\\a.doc"), Live(2, "C:\\Data\\b.doc"),
                          Live(3, "C:\\Data\\Reports\\it's.doc"), longRow, dead, otherRun},
                         {}, {{7, "D:\\Très long\\grüße.txt"}});
  Load(file);
  EXPECT_EQ(Outline(),
            Sorted({"C:\\", "C:\\ > Data", "Data > Reports", "Reports > a.doc [C:\\Data\\Reports\\a.doc]",
                    "Data > b.doc [C:\\Data\\b.doc]", "Reports > it's.doc [C:\\Data\\Reports\\it's.doc]",
                    "D:\\", "D:\\ > Très long", "Très long > grüße.txt [C:\\DATA~1\\LONG~1.TXT]"}));
  EXPECT_EQ(ui.tvwDetails.Item("C:\\Data\\Reports\\").Text(), "Reports");
  EXPECT_EQ(ui.lblTreeCount.Caption(), "4 file(s).");
  EXPECT_EQ(NodeWithText("a.doc").Image(), ui.imlRestore.Index("file"));

  // Choosing a run anew starts from an empty tree.
  Load(file);
  EXPECT_EQ(ui.tvwDetails.Count(), 9u);
}

TEST_F(SetDetailTest, OddPathsStayWithinReach) {
  sample::FileRow noPath = Live(7, "");
  sample::FileRow emptyLongPath = Live(9, "C:\\Folder\\named.txt");
  emptyLongPath.longPathId = 1;
  const CatalogFile file({Live(1, "readme.txt"), Live(2, "\\\\server\\share\\x.txt"), Live(3, "C:\\Folder\\"),
                          Live(4, "x"), Live(5, "C:\\\\double\\\\y.txt"), Live(6, "C:\\"), noPath,
                          Live(8, "\xff\xfe\\bad\xc3\\z"), emptyLongPath},
                         {}, {{1, ""}});
  Load(file);
  std::map<std::string, int> tags;
  for (int index = 1; index <= static_cast<int>(ui.tvwDetails.Count()); ++index) {
    const controls::Node node = ui.tvwDetails.Item(index);
    if (!node.Tag().empty()) {
      ++tags[std::string(node.Tag())];
      EXPECT_FALSE(node.Text().empty()) << node.Tag();
    }
  }
  EXPECT_EQ(tags.size(), 8u);
  EXPECT_EQ(NodeWithText("named.txt").Tag(), "C:\\Folder\\named.txt");
  EXPECT_EQ(NodeWithText("y.txt").Parent().Text(), "double");
  EXPECT_EQ(NodeWithText("x.txt").Parent().Text(), "share");
  EXPECT_EQ(ui.lblTreeCount.Caption(), "9 file(s).");
}

TEST_F(SetDetailTest, PluginEntriesStandUnderTheirHeadings) {
  const CatalogFile file({PluginRow(1, "System State", "C:\\Windows\\registry.dat", "registry"),
                          PluginRow(2, "SQL Server", "master\\full.bak", "master"),
                          PluginRow(3, "Exchange Server", "Store\\mailboxes\\Ann", "Ann"),
                          PluginRow(4, "Exchange Server Storage", "Store\\Public Folders\\News", "News"),
                          PluginRow(5, "Exchange Server", "Store\\Address Lists\\All", "All"),
                          PluginRow(6, "Exchange Server", "Store\\whole", "Exchange Server"),
                          PluginRow(7, "Exchange Serve", "C:\\odd\\x", "x")});
  Load(file);
  EXPECT_EQ(Outline(),
            Sorted({"System State", "System State > registry.dat [C:\\Windows\\registry.dat]", "SQL Server",
                    "SQL Server > full.bak [master\\full.bak]", "Exchange Server",
                    "Exchange Server > MailBoxes", "MailBoxes > Ann [Store\\mailboxes\\Ann]",
                    "Exchange Server > Public Folders", "Public Folders > News [Store\\Public Folders\\News]",
                    "Exchange Server > Address Lists", "Address Lists > All [Store\\Address Lists\\All]",
                    "Exchange Server > Exchange Server [Exchange Server]", "Exchange Serve",
                    "Exchange Serve > x [C:\\odd\\x]"}));
  const std::map<std::string, int> images = {{"MailBoxes", 11}, {"Ann", 12}, {"Public Folders", 8},
                                             {"News", 9},       {"All", 10}, {"Exchange Server", 7}};
  for (const auto& [text, image] : images) EXPECT_EQ(NodeWithText(text).Image(), image) << text;
  EXPECT_EQ(PluginImage("anything", "C:\\plain"), 2);
}

TEST_F(SetDetailTest, TicksAndExpansionFollowTheUser) {
  const CatalogFile file({Live(1, "C:\\a\\1.txt"), Live(2, "C:\\a\\2.txt"), Live(3, "C:\\b\\3.txt")});
  Load(file);
  ui.tvwDetails.UserCheck(NodeWithText("1.txt"), true);
  EXPECT_TRUE(ui.tvwDetails.FirstRoot().Checked());
  EXPECT_FALSE(NodeWithText("b").Checked());
  ui.tvwDetails.UserCheck(NodeWithText("b"), true);
  EXPECT_TRUE(NodeWithText("3.txt").Checked());
  ui.tvwDetails.UserCheck(NodeWithText("1.txt"), false);
  EXPECT_FALSE(NodeWithText("a").Checked());
  EXPECT_TRUE(ui.tvwDetails.FirstRoot().Checked());

  ui.tvwDetails.UserExpand(NodeWithText("a"), true);
  EXPECT_EQ(NodeWithText("a").Image(), ui.imlRestore.Index("ofolder"));
  ui.tvwDetails.UserExpand(NodeWithText("a"), false);
  EXPECT_EQ(NodeWithText("a").Image(), ui.imlRestore.Index("cfolder"));

  DetailActions actions(context);
  ui.cmdAction[2].UserClick();
  EXPECT_TRUE(NodeWithText("b").Expanded());
  EXPECT_FALSE(NodeWithText("3.txt").Expanded());
  ui.cmdAction[3].UserClick();
  EXPECT_FALSE(NodeWithText("C:\\").Expanded());
  ui.cmdAction[1].UserClick();
  for (int index = 1; index <= static_cast<int>(ui.tvwDetails.Count()); ++index) {
    EXPECT_FALSE(ui.tvwDetails.Item(index).Checked());
  }
}

TEST_F(SetDetailTest, ApplyMarksTickedFilesAndCanBeStopped) {
  sample::FileRow aggregate = PluginRow(4, "Exchange Server", "Store\\whole", "Exchange Server");
  sample::FileRow olderAggregate = PluginRow(5, "Exchange Server", "Store\\before", "Exchange Server");
  olderAggregate.status = 1;
  CatalogFile file({Live(1, "C:\\a\\it's.txt"), Live(2, "C:\\a\\2.txt"), Live(3, "C:\\b\\3.txt"), aggregate,
                    olderAggregate});
  Load(file);
  DetailActions actions(context);
  int listed = 0;
  actions.ListCurrentSelections = [&] { ++listed; };

  // The user stops before the third node is looked at.
  ui.tvwDetails.UserCheck(NodeWithText("a"), true);
  int seen = 0;
  machine.desktop.onDoEvents = [&] {
    if (++seen == 3) context.Stop();
  };
  ui.cmdAction[0].UserClick();
  EXPECT_EQ(listed, 0);
  EXPECT_TRUE(ui.lblTreeCount.Visible());
  EXPECT_FALSE(parameters.StopRequested);
  machine.desktop.onDoEvents = nullptr;

  ui.cmdAction[0].UserClick();
  EXPECT_EQ(listed, 1);
  EXPECT_FALSE(ui.lblTreeCount.Visible());
  EXPECT_EQ(ui.lblTreeCount.Caption(), "Scanning 4");
  EXPECT_EQ(file.Marked(), (std::set<std::int64_t>{1, 2}));

  // The aggregate goes by File, in every version; what was marked stays.
  const controls::Node heading = NodeWithText("Exchange Server");
  ui.tvwDetails.UserCheck(NodeWithText("a"), false);
  ui.tvwDetails.UserCheck(heading.Child(), true);
  ui.cmdAction[0].UserClick();
  EXPECT_EQ(file.Marked(), (std::set<std::int64_t>{1, 2, 4, 5}));
}

TEST_F(SetDetailTest, AFailingCatalogIsReportedOnce) {
  CatalogFile file({Live(1, "C:\\a\\1.txt"), Live(2, "C:\\a\\2.txt")});
  Load(file);
  ui.tvwDetails.UserCheck(NodeWithText("a"), true);
  file.Execute("DROP TABLE Catalog");
  DetailActions actions(context);
  actions.ListCurrentSelections = [] {};
  ui.cmdAction[0].UserClick();
  ASSERT_EQ(machine.desktop.messages.size(), 1u);
  EXPECT_EQ(machine.desktop.messages[0].title, "UpdateSelection");
  EXPECT_EQ(machine.desktop.messages[0].text.substr(0, 7), "(3078) ");
  EXPECT_EQ(machine.desktop.messages[0].style, platform::kExclamation);

  Load(file);
  ASSERT_EQ(machine.desktop.messages.size(), 2u);
  EXPECT_EQ(machine.desktop.messages[1].title, "LoadBackupSetDetail");
  EXPECT_EQ(ui.tvwDetails.Count(), 0u);
}

}  // namespace
}  // namespace kxrestore::dialog
