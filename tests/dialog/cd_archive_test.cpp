// The archive branch of the set tree and the panel that adds a disc, with the databases as files whose names
// are the drive paths.
#include <fstream>
#include <functional>

#include "dialog/cd_archive.h"
#include "dialog/set_tree.h"
#include "tests/dialog/dialog_fixture.h"
#include "tests/dialog/panel_fixture.h"
#include "tests/engine/watched_files.h"

namespace kxrestore::dialog_test {
namespace {

constexpr const char* kArchive = "C:\\dev\\wrk\\qvs\\tarvane source\\client\\CDArchive.mdb";
constexpr const char* kDisc = "D:\\backup!mdb1";
constexpr const char* kTable =
    "CREATE TABLE ArchiveHeader (ID INTEGER PRIMARY KEY, Volume TEXT, YYYY TEXT, MM TEXT, SetName TEXT, "
    "Taken DATETIME, Share REAL, Done BOOLEAN, Note TEXT);";

// Where the archive database must stand. A disc is a folder of the test's own, in the place of a drive's
// letter.
class ArchiveFiles {
 public:
  ArchiveFiles() {
    m_folder =
        std::filesystem::temp_directory_path() / ("kxarchive_" + std::to_string(std::random_device()()));
    disc = (m_folder / "disc").generic_string();
    discFile = disc + "\\backup!mdb1";
    std::filesystem::create_directories(disc);
#ifdef _WIN32
    std::filesystem::create_directories(std::filesystem::path(kArchive).parent_path());
    std::filesystem::remove(kArchive);
#else
    std::filesystem::current_path(m_folder);  // the whole path is the name of a file there
#endif
  }
  ~ArchiveFiles() {
    std::error_code ignored;
    std::filesystem::remove(kArchive, ignored);
    std::filesystem::current_path(m_before, ignored);
    std::filesystem::remove_all(m_folder, ignored);
  }
  ArchiveFiles(const ArchiveFiles&) = delete;
  ArchiveFiles& operator=(const ArchiveFiles&) = delete;

  std::string disc, discFile;

 private:
  std::filesystem::path m_before = std::filesystem::current_path(), m_folder;
};

std::string Insert(const std::string& values) {
  return "INSERT INTO ArchiveHeader (Volume, YYYY, MM, SetName) VALUES " + values + ";";
}

// So many headers, from number `first` on, a hundred a month; 3000 are more than a page cache holds.
std::string ManyHeaders(int first, int count) {
  return "WITH RECURSIVE n(i) AS (SELECT " + std::to_string(first) + " UNION ALL SELECT i + 1 FROM n LIMIT " +
         std::to_string(count) +
         ") INSERT INTO ArchiveHeader (Volume, YYYY, MM, SetName, Taken, Note) SELECT 'V' || (i / 2400), "
         "2000 + i / 1200 % 2, i / 100 % 12 + 1, 'Set ' || i, datetime(1.7e9 + i, 'unixepoch'), "
         "printf('%1000s', '') FROM n;";
}

// Makes the file if need be; the answer is the first row of the last query, "a|b|c".
std::string Sql(const std::string& path, const std::string& sql) {
  sqlite3* raw = nullptr;
  const int opened = sqlite3_open(path.c_str(), &raw);
  const std::unique_ptr<sqlite3, int (*)(sqlite3*)> database(raw, sqlite3_close);
  std::string row;
  const auto collect = [](void* target, int columns, char** values, char**) {
    auto& text = *static_cast<std::string*>(target);
    if (!text.empty()) return 0;
    for (int i = 0; i < columns; ++i) text.append(i == 0 ? "" : "|").append(values[i] ? values[i] : "Null");
    return 0;
  };
  if (opened != SQLITE_OK || sqlite3_exec(raw, sql.c_str(), collect, &row, nullptr) != SQLITE_OK) {
    ADD_FAILURE() << sqlite3_errmsg(raw);
  }
  return row;
}

class CdArchiveTest : public DialogTest {
 protected:
  CdArchiveTest() { MakeCatalog({}, Runs()); }

  void PutDisc(const std::string& sql) {
    Sql(files.discFile, std::string(kTable) + sql);
    platform.drives.drives = {{"C:\\", 3, "System"}, {files.disc + "\\", 5, "BACKUPS"}};
    platform.drives.files = {files.discFile};
  }
  void Start() {
    ui().tvwSets.UserClickNode(ui().tvwSets.Item("ArchAdd"));
    ui().DriveCD.UserSelect(files.disc);
    ui().cmdCD.UserClick();
  }
  void Open() { ui().tvwSets.UserClickNode(NodeOf(ui().tvwSets, "Archive Sets")); }

  // The branch, one line a node, indented by its depth.
  Strings Branch() {
    Strings lines;
    Lines(NodeOf(ui().tvwSets, "Archive Sets").Child(), "", lines);
    return lines;
  }

  ArchiveFiles files;

 private:
  static void Lines(controls::Node node, const std::string& indent, Strings& lines) {
    for (; node; node = node.Next()) {
      lines.push_back(indent + std::string(node.Text()));
      Lines(node.Child(), indent + " ", lines);
    }
  }
};

TEST_F(CdArchiveTest, TheBranchIsThereWhereItCanBeUsed) {
  EXPECT_FALSE(ui().tvwSets.Find("ArchAdd"));
  ui().form.Unload();

  platform.drives.drives = {{"C:\\", 3, "System"}, {"E:\\", 5, {}}, {"F:\\", 5, {}}};
  form.Load();
  EXPECT_EQ(ui().tvwSets.Item("ArchAdd").Text(), "Append new Archive CD ...");
  EXPECT_EQ(ui().DriveCD.Drives(), (Strings{"E:", "F:"}));
  ui().form.Unload();

  platform.drives.drives.clear();
  platform.drives.files = {kArchive};
  form.Load();
  EXPECT_TRUE(ui().tvwSets.Find("ArchAdd"));
}

TEST_F(CdArchiveTest, TheBranchIsReadOnce) {
  Sql(kArchive,
      kTable + Insert("('A', '2025', '11', 'Office'), ('A', '2025', '11', 'Home'), ('A', '2025', '12', "
                      "'Office'), ('B', '2025', '12', 'Office'), ('B', '2026', '12', 'Office'), "
                      "('A', '2025', '11', 'Office')"));
  platform.drives.files = {kArchive};
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
                         "   Office",
                         " Backups for 2026",
                         "  Backups for 2026-12",
                         "   Office"};
  Open();
  EXPECT_EQ(Branch(), expected);
  Sql(kArchive, Insert("('C', '2026', '1', 'Office')"));
  Open();
  ui().tvwSets.UserExpand(NodeOf(ui().tvwSets, "Archive Sets"), true);
  EXPECT_EQ(Branch(), expected);
  EXPECT_EQ(TakeMessages(), Strings{});
}

TEST_F(CdArchiveTest, AnArchiveThatCannotBeReadIsAskedForOnce) {
  platform.drives.drives = {{"D:\\", 5, "BACKUPS"}};
  const struct {
    const char* error;
    std::function<void()> prepare;
  } cases[] = {
      {"3024", [] {}},
      {"3343", [] { std::ofstream(kArchive).close(); }},
      {"3078", [] { Sql(kArchive, "CREATE TABLE Other (x)"); }},
      {"3265", [] { Sql(kArchive, "CREATE TABLE ArchiveHeader (Volume)"); }},
      {"3049",
       [] {
         Sql(kArchive, "DROP TABLE ArchiveHeader;" + std::string(kTable) + ManyHeaders(1, 200));
         std::filesystem::resize_file(kArchive, 100);
       }},
  };
  for (const auto& [error, prepare] : cases) {
    prepare();
    Open();
    const Strings messages = TakeMessages();
    ASSERT_EQ(messages.size(), 2u) << error;
    EXPECT_EQ(messages[0], ": Requires CD Archives Database");
    EXPECT_EQ(messages[1].substr(0, 23), "LoadUpArchives: (" + std::string(error) + ") ") << messages[1];
    Open();
    EXPECT_EQ(TakeMessages(), Strings{});
    EXPECT_EQ(Branch().size(), 1u);
    ui().form.Unload();
  }
  std::filesystem::remove(kArchive);
  Sql(kArchive, kTable);
  Open();
  EXPECT_EQ(TakeMessages(), Strings{}) << "an empty archive is none to complain of";
  EXPECT_EQ(Branch().size(), 1u);
}

TEST_F(CdArchiveTest, ABranchThatWasStoppedIsReadAgain) {
  Sql(kArchive,
      "CREATE VIEW ArchiveHeader AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n LIMIT "
      "20000) "
      "SELECT 'A' AS Volume, '2025' AS YYYY, i % 5 AS MM, 'Office' AS SetName FROM n GROUP BY i % 5");
  platform.drives.files = {kArchive};
  ui();
  for (const std::size_t item : {1, 3}) {  // before the first row and among the rows
    DuringWalk(item, [this] { ui().form.UserKey(controls::Key::kEscape); });
    Open();
    EXPECT_LT(Branch().size(), 13u);
  }
  Open();
  EXPECT_EQ(Branch().size(), 1 + 2 + 2 * 5u);
  EXPECT_EQ(TakeMessages(), Strings{});
}

TEST_F(CdArchiveTest, ThePanelShowsTheChosenVolumeAndChecksTheLastDrive) {
  platform.drives.drives = {{"D:\\", 5, "ONE"}, {"E:\\", 5, "  "}};
  platform.drives.files = {"D:\\backup!mdb"};
  ui().tvwSets.UserClickNode(ui().tvwSets.Item("ArchAdd"));
  ASSERT_TRUE(ui().frLoadCD.IsShown());
  ui().DriveCD.UserSelect("D:");
  EXPECT_EQ(ui().txtVL.Text(), "ONE");
  EXPECT_FALSE(ui().cmdCD.Enabled());
  EXPECT_EQ(ui().lblCD[2].Caption(), "disc Contains no backup data.");
  EXPECT_TRUE(ui().lblCD[2].Visible());

  platform.drives.files = {"E:\\backup!mdb.old"};
  ui().DriveCD.UserSelect("E:");
  EXPECT_EQ(ui().txtVL.Text(), "(no label)");
  EXPECT_TRUE(ui().cmdCD.Enabled());
  EXPECT_FALSE(ui().lblCD[2].Visible());

  platform.drives.files.clear();
  ui().DriveCD.UserSelect("D:");
  EXPECT_TRUE(ui().cmdCD.Enabled()) << "is left as it was";
  ui().cmdCD.UserClick();
  EXPECT_EQ(ui().lblCD[2].Caption(), "disc Contains no backup data.");
  EXPECT_EQ(TakeMessages(), Strings{});
}

TEST_F(CdArchiveTest, StartAddsWhatTheArchiveLacks) {
  Sql(kArchive, kTable + Insert("('A', '2025', '11', 'Office')"));
  PutDisc(
      Insert("('A', '2025', '11', 'Office'), ('B', '2026', '01', 'It''s'), ('B', '2026', '01', 'It''s')") +
      "INSERT INTO ArchiveHeader VALUES (50, 'B', NULL, '02', 'b\xC3\xBCro', '2026-03-01 08:09:10', 0.1, "
      "1, NULL);");
  platform.drives.files.push_back(kArchive);
  Open();
  EXPECT_EQ(Branch().size(), 5u);
  Start();
  EXPECT_EQ(TakeMessages(), Strings{": 2 archived backup(s) added."});
  EXPECT_EQ(Sql(kArchive, "SELECT count(*) FROM ArchiveHeader"), "3");
  EXPECT_EQ(
      Sql(kArchive, "SELECT Volume, YYYY, MM, SetName, Taken, Share, Done FROM ArchiveHeader WHERE Done"),
      "B|Null|02|b\xC3\xBCro|2026-03-01 08:09:10|0.1|1");
  EXPECT_EQ(Sql(kArchive, "SELECT SetName, Taken FROM ArchiveHeader WHERE YYYY = '2026'"), "It's|Null");
  EXPECT_EQ(Branch(),
            (Strings{"Append new Archive CD ...", "Volume A", " Backups for 2025", "  Backups for 2025-11",
                     "   Office", "Volume B", " Backups for 2026", "  Backups for 2026-01", "   It's",
                     " Backups for ", "  Backups for -02", "   b\xC3\xBCro"}));
  EXPECT_EQ(ui().ProgressBar1.Value(), ui().ProgressBar1.Max());

  ui().cmdCD.UserClick();
  EXPECT_EQ(TakeMessages(), Strings{": 0 archived backup(s) added."});
  EXPECT_EQ(Sql(kArchive, "SELECT count(*) FROM ArchiveHeader"), "3");
}

// Columns are found by their names, and what two tables keep differently is still the same header.
TEST_F(CdArchiveTest, AddingADiscOfOtherTypesTwiceAddsItOnce) {
  Sql(kArchive, kTable);
  PutDisc(
      "DROP TABLE ArchiveHeader; CREATE TABLE ArchiveHeader (done INTEGER, SHARE TEXT, SetName TEXT, MM "
      "INTEGER, "
      "YYYY INTEGER, Volume TEXT, Taken TEXT, Note TEXT); INSERT INTO ArchiveHeader VALUES (1, '0.25', 'S', "
      "1, 2026, "
      "'A', "
      "'2026-03-01 08:09:10', 'n'), (0, '3', 'it''s', 2, NULL, '-', NULL, NULL)");
  Start();
  EXPECT_EQ(TakeMessages(), Strings{": 2 archived backup(s) added."});
  EXPECT_EQ(Sql(kArchive, "SELECT Volume, YYYY, MM, SetName, Taken, Share, Done FROM ArchiveHeader"),
            "A|2026|1|S|2026-03-01 08:09:10|0.25|1");
  ui().cmdCD.UserClick();
  EXPECT_EQ(TakeMessages(), Strings{": 0 archived backup(s) added."});
}

// Whatever comes between, the archive and its branch stay as they were, and the panel says so.
TEST_F(CdArchiveTest, ADiscIsAddedAsAWholeOrNotAtAll) {
  constexpr int kHeaders = 3000;
  Sql(kArchive, kTable + Insert("('A', '2025', '11', 'Office')"));
  PutDisc(ManyHeaders(1, kHeaders));
  const auto discSize = std::filesystem::file_size(files.discFile);
  const std::filesystem::path away = files.discFile + ".away";
  engine::testing::WatchedFiles watched;  // for what is opened from here on

  struct Fault {
    const char* name;
    std::size_t item;  // of the walk, whose pending messages bring it; 0: before the start
    std::function<void()> happen;
    const char* error;  // how the box begins; none for a stop
    std::function<void()> mend = [] {};
  };
  const std::size_t writing = kHeaders + 1 + kHeaders / 2;
  const auto discOnly = [&](const std::string& sql) { return [this, sql] { Sql(files.discFile, sql); }; };
  const Fault faults[] = {
      {"pulled out before it is opened", 0, [&] { std::filesystem::rename(files.discFile, away); },
       "cmdCD.Click: (3024) ", [&] { std::filesystem::rename(away, files.discFile); }},
      {"unreadable from the middle on", 10,
       [&] { std::filesystem::resize_file(files.discFile, discSize / 2 / 4096 * 4096); },
       "cmdCD.Click: (3049) ",
       [&] {
         std::filesystem::remove(files.discFile);
         PutDisc(ManyHeaders(1, kHeaders));
       }},
      {"no headers", 0, discOnly("ALTER TABLE ArchiveHeader RENAME TO Elsewhere"), "cmdCD.Click: (3078) ",
       discOnly("ALTER TABLE Elsewhere RENAME TO ArchiveHeader")},
      {"a column missing", 0, discOnly("ALTER TABLE ArchiveHeader RENAME COLUMN Share TO Part"),
       "cmdCD.Click: (3265) The disc's table ArchiveHeader does not have the columns of the archive "
       "database's. "
       "Missing on the disc: Share. Only on the disc: Part.",
       discOnly("ALTER TABLE ArchiveHeader RENAME COLUMN Part TO Share")},
      {"Esc while the disc is read", 10, [&] { ui().form.UserKey(controls::Key::kEscape); }, nullptr},
      {"Esc while headers are written", writing, [&] { ui().form.UserKey(controls::Key::kEscape); }, nullptr},
      {"a full disk", writing, [&] { watched.SetDiskFull(true); }, "cmdCD.Click: (3026) ",
       [&] { watched.SetDiskFull(false); }},
      {"a header that the archive refuses", 0,
       [] {
         Sql(kArchive,
             "CREATE TRIGGER Refuse BEFORE INSERT ON ArchiveHeader WHEN new.SetName = 'Set 1500' BEGIN "
             "SELECT "
             "RAISE(ABORT, 'no'); END");
       },
       "cmdCD.Click: (3317) ", [] { Sql(kArchive, "DROP TRIGGER Refuse"); }},
  };
  Start();  // shows the panel; nobody shall think that the faults keep it from working
  EXPECT_EQ(TakeMessages(), Strings{": 3000 archived backup(s) added."});
  Sql(kArchive, "DELETE FROM ArchiveHeader WHERE Volume <> 'A'");
  const Strings branch = Branch();
  for (const Fault& fault : faults) {
    SCOPED_TRACE(fault.name);
    DuringWalk(fault.item, fault.happen);
    if (fault.item == 0) fault.happen();
    ui().cmdCD.UserClick();
    desktop.onDoEvents = nullptr;
    const Strings messages = TakeMessages();
    if (fault.error != nullptr) {
      ASSERT_EQ(messages.size(), 1u) << messages.back();
      EXPECT_TRUE(messages[0].starts_with(fault.error)) << messages[0];
      EXPECT_EQ(ui().lblCD[2].Caption(), "Nothing was added.");
    } else {
      EXPECT_EQ(messages, Strings{});
      EXPECT_EQ(ui().lblCD[2].Caption(), "Stopped. Nothing was added.");
    }
    EXPECT_TRUE(ui().lblCD[2].Visible());
    EXPECT_EQ(ui().ProgressBar1.Value(), 0);
    fault.mend();
    EXPECT_EQ(Branch(), branch);
    EXPECT_EQ(Sql(kArchive, "SELECT count(*) FROM ArchiveHeader"), "1");
  }
  ui().cmdCD.UserClick();
  EXPECT_EQ(TakeMessages(), Strings{": 3000 archived backup(s) added."}) << "the disc can still be added";
}

TEST_F(CdArchiveTest, ChoosingAnotherNodeAfterAddingStillWorks) {
  Sql(kArchive, kTable + Insert("('A', '2025', '11', 'Office')"));
  PutDisc(Insert("('B', '2026', '01', 'Home')"));
  Open();
  ui().tvwSets.UserClickNode(ui().tvwSets.Item("ArchAdd"));
  ui().DriveCD.UserSelect(files.disc);
  DuringWalk(1, [this] { ui().tvwSets.UserClickNode(NodeOf(ui().tvwSets, "Volume A")); });
  ui().cmdCD.UserClick();
  EXPECT_EQ(TakeMessages(), Strings{": 1 archived backup(s) added."});
  ChooseRun("1 002");
  EXPECT_EQ(ui().lblCurrSet.Caption(), "Current Set: ");
}

class ArchiveNodesTest : public dialog::PanelTest {};

// Their first children are no runs and their texts no dates: nothing may be read from tags that they lack.
TEST_F(ArchiveNodesTest, ChoosingOneChoosesNoSet) {
  const ArchiveFiles files;
  const CatalogFile catalog({}, Runs());
  UseCatalog(catalog.Path());
  Sql(kArchive,
      kTable + Insert("('1 002', '2025', NULL, 'Set 1'), (NULL, '2025', '1', NULL), ('A', 7, 8, '2 001')"));
  machine.drives.files = {kArchive};
  dialog::SetTree tree(context);
  dialog::CdArchive archive(context);
  tree.LoadBackupSetTree();
  archive.AddBranch();
  archive.LoadUpArchives(ui.tvwSets.Item("ArchAdd").Parent());
  int chosen = 0;
  for (int index = 1; index <= static_cast<int>(ui.tvwSets.Count()); ++index) {
    const controls::Node node = ui.tvwSets.Item(index);
    if (node.Root().Text() != "Archive Sets") continue;
    tree.tvwSets_NodeClick(ui.tvwSets.Item(4));
    ASSERT_EQ(context.choice.m_lngSetID, 1);
    tree.tvwSets_NodeClick(node);
    EXPECT_EQ(node.Tag(), "") << node.Text();
    EXPECT_EQ(context.choice.m_lngSetID, 0) << node.Text();
    EXPECT_EQ(context.choice.m_strSetID, "");
    EXPECT_EQ(context.choice.m_intRunCount, 0);
    EXPECT_EQ(ui.lblSetName.Caption(), node.Text());
    EXPECT_EQ(ui.frLoadCD.Visible(), node.Key() == "ArchAdd");
    ++chosen;
  }
  EXPECT_EQ(chosen, 2 + 3 * 4);
  EXPECT_TRUE(machine.desktop.messages.empty());
}

}  // namespace
}  // namespace kxrestore::dialog_test
