// The archive branch of the set tree and the panel that adds a disc, with the databases as files whose names
// are the drive paths.
#include <filesystem>

#include "tests/dialog/dialog_fixture.h"
#include "tests/engine/hooked_files.h"

namespace kxrestore::dialog_test {
namespace {

constexpr const char* kArchive = "C:\\dev\\wrk\\qvs\\tarvane source\\client\\CDArchive.mdb";
constexpr const char* kDisc = "disc\\backup!mdb1";
constexpr const char* kTable =
    "CREATE TABLE ArchiveHeader (ID INTEGER PRIMARY KEY, Volume TEXT, YYYY TEXT, MM TEXT, SetName TEXT, "
    "Taken DATETIME, Share REAL, Done BOOLEAN, Note TEXT);";

std::string Insert(const std::string& values) {
  return "INSERT INTO ArchiveHeader (Volume, YYYY, MM, SetName) VALUES " + values + ";";
}

// So many headers, a hundred a month; 3000 are more than a page cache holds.
std::string ManyHeaders(int count) {
  return "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n LIMIT " + std::to_string(count) +
         ") INSERT INTO ArchiveHeader (Volume, YYYY, MM, SetName, Taken, Note) SELECT 'V' || (i / 2400), "
         "2000 + i / 1200 % 2, i / 100 % 12 + 1, 'Set ' || i, datetime(1.7e9 + i, 'unixepoch'), "
         "printf('%1000s', '') FROM n;";
}

// The first row of the last query.
std::string Sql(const std::string& path, const std::string& sql) {
  const Strings rows = catalog_test::SqliteRows(path, sql);
  return rows.empty() ? std::string() : rows.front();
}

// A disc is a folder in the place of a drive's letter. Where names have no drives, those of the two databases
// are the names of files in the test's folder.
class CdArchiveTest : public DialogTest {
 protected:
  CdArchiveTest() {
    std::error_code ignored;
    std::filesystem::create_directories(m_folder / "disc");
    std::filesystem::current_path(m_folder);
    std::filesystem::create_directories(std::filesystem::path(kArchive).parent_path(), ignored);
    std::filesystem::remove(kArchive);
    MakeCatalog({Row(1, 1, "002", "C:\\a.doc"), Row(2, 2, "001", "C:\\b.doc")});
  }
  ~CdArchiveTest() override {
    std::error_code ignored;
    std::filesystem::remove(kArchive, ignored);
    std::filesystem::current_path(m_before, ignored);
    std::filesystem::remove_all(m_folder, ignored);
  }

  void PutArchive(const std::string& sql) {
    Sql(kArchive, kTable + sql);
    platform.drives.files.push_back(kArchive);
  }
  void PutDisc(const std::string& sql) {
    Sql(kDisc, kTable + sql);
    platform.drives.drives = {{"C:\\", 3, "System"}, {"disc\\", 5, "BACKUPS"}};
    platform.drives.files.push_back(kDisc);
  }
  void ShowPanel() { ChooseNode("Append new Archive CD ..."); }
  void ShowDisc() {
    ShowPanel();
    ui().DriveCD.UserSelect("disc");
  }
  void Start() {
    ShowDisc();
    ui().cmdCD.UserClick();
  }
  void Open() { ChooseNode("Archive Sets"); }
  Strings Branch() { return Outline(NodeOf(ui().tvwSets, "Archive Sets").Child()); }

 private:
  std::filesystem::path m_before = std::filesystem::current_path();
  std::filesystem::path m_folder =
      std::filesystem::temp_directory_path() / ("kxarchive_" + std::to_string(std::random_device()()));
};

TEST_F(CdArchiveTest, TheBranchIsThereWhereItCanBeUsedAndReadOnce) {
  EXPECT_FALSE(ui().tvwSets.Find("ArchAdd"));
  ui().form.Unload();
  platform.drives.drives = {{"C:\\", 3, "System"}, {"E:\\", 5, {}}, {"F:\\", 5, {}}};
  EXPECT_EQ(Branch(), Strings{"Append new Archive CD ..."});
  EXPECT_EQ(ui().DriveCD.Drives(), (Strings{"E:", "F:"}));
  ui().form.Unload();

  platform.drives.drives.clear();
  PutArchive(Insert(
      "('A', '2025', '11', 'Office'), ('A', '2025', '11', 'Home'), ('A', '2025', '12', 'Office'), ('B', "
      "'2025', '12', 'Office'), ('A', '2025', '11', 'Office')"));
  Open();
  const Strings expected{"Append new Archive CD ...",
                         "Volume A",
                         " Backups for 2025",
                         "  Backups for 2025-11",
                         "   Office",
                         "   Home",
                         "  Backups for 2025-12",
                         "   Office",
                         "Volume B",
                         " Backups for 2025",
                         "  Backups for 2025-12",
                         "   Office"};
  EXPECT_EQ(Branch(), expected);
  Sql(kArchive, Insert("('C', '2026', '1', 'Office')"));
  Open();
  ui().tvwSets.UserExpand(NodeOf(ui().tvwSets, "Archive Sets"), true);
  EXPECT_EQ(Branch(), expected);
}

TEST_F(CdArchiveTest, AnArchiveThatCannotBeReadIsAskedForOnce) {
  platform.drives.drives = {{"D:\\", 5, "BACKUPS"}};
  const std::pair<const char*, std::string> cases[] = {
      {"3024", ""},
      {"3078", "CREATE TABLE Other (x)"},
      {"3265", "CREATE TABLE ArchiveHeader (Volume)"},
      {"3049", "DROP TABLE ArchiveHeader;" + std::string(kTable) + ManyHeaders(200)},
  };
  for (const auto& [error, sql] : cases) {
    if (!sql.empty()) Sql(kArchive, sql);
    if (std::string_view(error) == "3049") std::filesystem::resize_file(kArchive, 100);
    Open();
    ExpectReports({": Requires CD Archives Database", "LoadUpArchives: (" + std::string(error) + ") "});
    Open();
    EXPECT_EQ(Branch().size(), 1u);
    ui().form.Unload();
  }
  std::filesystem::remove(kArchive);
  Sql(kArchive, kTable);
  Open();
  EXPECT_EQ(Branch().size(), 1u) << "an empty archive is none to complain of";
}

TEST_F(CdArchiveTest, ABranchThatWasStoppedIsReadAgain) {
  Sql(kArchive,
      "CREATE VIEW ArchiveHeader AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n LIMIT "
      "20000) SELECT 'A' AS Volume, '2025' AS YYYY, i % 5 AS MM, 'Office' AS SetName FROM n GROUP BY i % 5");
  platform.drives.files = {kArchive};
  ui();
  for (const std::size_t item : {1, 3}) {  // before the first row and among the rows
    EscapeAt(item);
    Open();
    EXPECT_LT(Branch().size(), 13u);
  }
  Open();
  EXPECT_EQ(Branch().size(), 1 + 2 + 2 * 5u);
}

TEST_F(CdArchiveTest, ThePanelShowsTheChosenVolumeAndChecksTheLastDrive) {
  platform.drives.drives = {{"D:\\", 5, "ONE"}, {"E:\\", 5, "  "}};
  ShowTab(2);
  ShowPanel();
  EXPECT_EQ(ui().tbsOptions.SelectedIndex(), 1);
  EXPECT_TRUE(ui().frLoadCD.IsShown());
  const auto choose = [&](const char* drive, const char* file) {
    platform.drives.files = {file};
    ui().DriveCD.UserSelect(drive);
    return ui().txtVL.Text() + (ui().cmdCD.Enabled() ? " on " : " off ") +
           (ui().lblCD[2].Visible() ? ui().lblCD[2].Caption() : "");
  };
  EXPECT_EQ(choose("D:", "D:\\backup!mdb"), "ONE off disc Contains no backup data.");
  EXPECT_EQ(choose("E:", "E:\\backup!mdb.old"), "(no label) on ");
  EXPECT_EQ(choose("D:", ""), "ONE on disc Contains no backup data.") << "the button is left as it was";
  ui().cmdCD.UserClick();
  EXPECT_EQ(ui().lblCD[2].Caption(), "disc Contains no backup data.");
}

TEST_F(CdArchiveTest, StartAddsWhatTheArchiveLacks) {
  PutArchive(Insert("('A', '2025', '11', 'Office')"));
  PutDisc(
      Insert("('A', '2025', '11', 'Office'), ('B', '2026', '01', 'It''s'), ('B', '2026', '01', 'It''s')") +
      "INSERT INTO ArchiveHeader VALUES (50, 'B', NULL, '02', 'b\xC3\xBCro', '2026-03-01 08:09:10', 0.1, "
      "1, NULL);");
  Open();
  EXPECT_EQ(Branch().size(), 5u);
  ShowDisc();
  DuringWalk(1, [this] { ChooseNode("Volume A"); });  // of the branch that is rebuilt
  ui().cmdCD.UserClick();
  ExpectReports({": 2 archived backup(s) added."});
  EXPECT_EQ(
      Sql(kArchive, "SELECT Volume, YYYY, MM, SetName, Taken, Share, Done FROM ArchiveHeader WHERE Done"),
      "B|Null|02|b\xC3\xBCro|2026-03-01 08:09:10|0.1|1");
  EXPECT_EQ(Sql(kArchive, "SELECT SetName, Taken FROM ArchiveHeader WHERE YYYY = '2026'"), "It's|Null");
  EXPECT_EQ(Branch(),
            (Strings{"Append new Archive CD ...", "Volume A", " Backups for 2025", "  Backups for 2025-11",
                     "   Office", "Volume B", " Backups for 2026", "  Backups for 2026-01", "   It's",
                     " Backups for ", "  Backups for -02", "   b\xC3\xBCro"}));
  EXPECT_EQ(ui().ProgressBar1.Value(), ui().ProgressBar1.Max());

  Start();
  ExpectReports({": 0 archived backup(s) added."});
  EXPECT_EQ(Sql(kArchive, "SELECT count(*) FROM ArchiveHeader"), "3");
  ChooseRun("1 002");
  EXPECT_EQ(ui().lblCurrSet.Caption(), "Current Set: ");
}

// Columns are found by their names, and what two tables keep differently is still the same header.
TEST_F(CdArchiveTest, AddingADiscOfOtherTypesTwiceAddsItOnce) {
  PutArchive("");
  PutDisc(
      "DROP TABLE ArchiveHeader; CREATE TABLE ArchiveHeader (done INTEGER, SHARE TEXT, SetName TEXT, MM "
      "INTEGER, YYYY INTEGER, Volume TEXT, Taken TEXT, Note TEXT); INSERT INTO ArchiveHeader VALUES (1, "
      "'0.25', 'S', 1, 2026, 'A', '2026-03-01 08:09:10', 'n'), (0, '3', 'it''s', 2, NULL, '-', NULL, NULL)");
  Start();
  ui().cmdCD.UserClick();
  ExpectReports({": 2 archived backup(s) added.", ": 0 archived backup(s) added."});
  EXPECT_EQ(Sql(kArchive, "SELECT Volume, YYYY, MM, SetName, Taken, Share, Done FROM ArchiveHeader"),
            "A|2026|1|S|2026-03-01 08:09:10|0.25|1");
}

// Whatever interrupts it, the archive and its branch stay as they were, and the panel shows why.
TEST_F(CdArchiveTest, ADiscIsAddedAsAWholeOrNotAtAll) {
  constexpr int kHeaders = 3000;
  PutArchive(Insert("('A', '2025', '11', 'Office')"));
  PutDisc(ManyHeaders(kHeaders));
  engine::testing::WatchedFiles watched;  // for files opened from here on
  const auto rename = [](const std::string& what, const std::string& to) {
    return [=] { Sql(kDisc, "ALTER TABLE ArchiveHeader RENAME " + what + " TO " + to); };
  };
  struct Fault {
    const char* name;
    std::size_t item;  // of the walk, whose pending messages bring it; 0: before the start
    std::function<void()> happen;
    const char* error;  // how the box begins; none for a stop
    std::function<void()> mend = [] {};
  };
  const std::size_t writing = kHeaders + 1 + kHeaders / 2;
  const Fault faults[] = {
      {"pulled out before it is opened", 0, [] { std::filesystem::rename(kDisc, "away"); },
       "cmdCD.Click: (3024) ", [] { std::filesystem::rename("away", kDisc); }},
      {"unreadable from the middle on", 10,
       [] { std::filesystem::resize_file(kDisc, std::filesystem::file_size(kDisc) / 2 / 4096 * 4096); },
       "cmdCD.Click: (3049) ",
       [&] {
         std::filesystem::remove(kDisc);
         PutDisc(ManyHeaders(kHeaders));
       }},
      {"a column missing", 0, rename("COLUMN Share", "Part"),
       "cmdCD.Click: (3265) The disc's table ArchiveHeader does not have the columns of the archive "
       "database's. Missing on the disc: Share. Only on the disc: Part.",
       rename("COLUMN Part", "Share")},
      {"Esc while the disc is read", 10, [&] { Escape(); }, nullptr},
      {"Esc while headers are written", writing, [&] { Escape(); }, nullptr},
      {"a full disk", writing, [&] { watched.diskFull = true; }, "cmdCD.Click: (3026) ",
       [&] { watched.diskFull = false; }},
      {"a header that the archive refuses", 0,
       [] {
         Sql(kArchive,
             "CREATE TRIGGER Refuse BEFORE INSERT ON ArchiveHeader WHEN new.SetName = 'Set 1500' BEGIN "
             "SELECT RAISE(ABORT, 'no'); END");
       },
       "cmdCD.Click: (3317) ", [] { Sql(kArchive, "DROP TRIGGER Refuse"); }},
  };
  Start();  // shows the panel before faults are injected
  ExpectReports({": 3000 archived backup(s) added."});
  Sql(kArchive, "DELETE FROM ArchiveHeader WHERE Volume <> 'A'");
  const Strings branch = Branch();
  for (const Fault& fault : faults) {
    SCOPED_TRACE(fault.name);
    DuringWalk(fault.item, fault.happen);
    if (fault.item == 0) fault.happen();
    ui().cmdCD.UserClick();
    desktop.onDoEvents = nullptr;
    ExpectReports(fault.error ? Strings{fault.error} : Strings{});
    EXPECT_EQ(ui().lblCD[2].Caption(), fault.error ? "Nothing was added." : "Stopped. Nothing was added.");
    EXPECT_TRUE(ui().lblCD[2].Visible());
    EXPECT_EQ(ui().ProgressBar1.Value(), 0);
    fault.mend();
    EXPECT_EQ(Branch(), branch);
    EXPECT_EQ(Sql(kArchive, "SELECT count(*) FROM ArchiveHeader"), "1");
  }
  ui().cmdCD.UserClick();
  ExpectReports({": 3000 archived backup(s) added."});
}

// Their first children are no runs and their texts no dates: nothing may be read from tags that they lack.
TEST_F(CdArchiveTest, ChoosingANodeOfTheBranchChoosesNoSet) {
  PutArchive(Insert("('1 002', '2025', NULL, 'Set 1'), (NULL, '2025', '1', NULL), ('A', 7, 8, '2 001')"));
  Open();
  int chosen = 0;
  for (int index = 1; index <= static_cast<int>(ui().tvwSets.Count()); ++index) {
    const controls::Node node = ui().tvwSets.Item(index);
    if (node.Root().Text() != "Archive Sets") continue;
    ++chosen;
    ChooseRun("1 002");
    ASSERT_TRUE(ui().cmdAction[kApply].Enabled());
    ui().tvwSets.UserClickNode(node);
    EXPECT_EQ(ui().lblSetName.Caption(), node.Text());
    const bool adds = node.Key() == "ArchAdd";
    EXPECT_EQ(ui().frLoadCD.Visible(), adds);
    for (const auto& button : ui().cmdAction) EXPECT_EQ(button.Enabled(), !adds) << button.Name();
    ShowTab(2);
    Find("doc");
    EXPECT_EQ(ui().asSearch.Count(), 2u) << "all sets are searched from " << node.Text();
  }
  EXPECT_EQ(chosen, 2 + 3 * 4);
}

}  // namespace
}  // namespace kxrestore::dialog_test
