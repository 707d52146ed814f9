// The archive branch of the set tree, and the panel that adds a disc to the archive.
#include <filesystem>
#include <random>

#include "tests/dialog/script.h"
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

// `count` headers, a hundred a month; 3,000 exceed the page cache.
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

// A folder serves as the disc. On systems without drive letters the two database paths are plain file names
// in the test's folder.
class CdArchiveTest : public ScriptTest {
 protected:
  explicit CdArchiveTest(std::string script = {}) : ScriptTest(std::move(script)) {
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
  void Start() {
    ChooseNode("Append new Archive CD ...");
    ui().DriveCD.UserSelect("disc");
    ui().cmdCD.UserClick();
  }
  Strings Branch() {
    const controls::Node root = NodeFrom(ui().tvwSets.FirstRoot(), "Archive Sets");
    return root ? Outline(root.Child()) : Strings{"none"};
  }

 private:
  std::filesystem::path m_before = std::filesystem::current_path();
  std::filesystem::path m_folder =
      std::filesystem::temp_directory_path() / ("kxarchive_" + std::to_string(std::random_device()()));
};

// The cases of scripts/cd_archive.txt.
class ArchiveCase : public CdArchiveTest {
 public:
  explicit ArchiveCase(std::string script) : CdArchiveTest(std::move(script)) {
    // Headers, "('A', '2025', '11', 'Office'), ...", or a statement.
    const auto statement = [](const std::string& sql) { return sql.starts_with('(') ? Insert(sql) : sql; };
    commands["archive"] = [=, this](const std::string& sql) {
      std::filesystem::exists(kArchive) ? void(Sql(kArchive, statement(sql))) : PutArchive(statement(sql));
    };
    commands["disc"] = [=, this](const std::string& sql) { PutDisc(statement(sql)); };
    commands["cut"] = [](const std::string& size) {
      std::filesystem::resize_file(kArchive, std::stoul(size));
    };
    commands["ask"] = [this](const std::string& sql) { events.push_back("archive " + Sql(kArchive, sql)); };
    commands["drive"] = [this](const std::string& drive) {
      platform.drives.drives.push_back({drive.substr(0, 3), drive[0] == 'C' ? 3u : 5u, drive.substr(3)});
    };
    commands["holds"] = [this](const std::string& path) { platform.drives.files = {path}; };
    commands["insert"] = [this](const std::string& drive) { ui().DriveCD.UserSelect(drive); };
    asides.insert({"archive", "disc", "ask", "drive", "holds", "cut"});
    looks["branch"] = [this](FormControls&) {
      std::string branch = "branch";
      for (const std::string& node : Branch()) branch += "\n      " + node;
      return branch;
    };
    looks["drives"] = [](FormControls& shown) {
      std::string drives = "drives";
      for (const std::string& drive : shown.DriveCD.Drives()) drives += " " + drive;
      return drives;
    };
    looks["panel"] = [](FormControls& shown) {
      return std::string(shown.frLoadCD.IsShown() ? "" : "hidden ") + "panel " + shown.txtVL.Text() +
             (shown.cmdCD.Enabled() ? ", Start" : "") +
             (shown.lblCD[2].Visible() ? ", \"" + shown.lblCD[2].Caption() + "\"" : "") + ", " +
             (shown.ProgressBar1.Value() == shown.ProgressBar1.Max() ? "full" : "not full");
    };
    looks["buttons"] = [](FormControls& shown) {
      std::string buttons = "buttons";
      for (const auto& button : shown.cmdAction) buttons += button.Enabled() ? " on" : " off";
      return buttons;
    };
  }
};

const bool registered = RegisterCases<ArchiveCase>("cd_archive");

// After any interruption the archive and its branch are unchanged, and the panel says so.
TEST_F(CdArchiveTest, ADiscIsAddedAsAWholeOrNotAtAll) {
  constexpr int kHeaders = 3000;
  PutArchive(Insert("('A', '2025', '11', 'Office')"));
  PutDisc(ManyHeaders(kHeaders));
  engine::testing::WatchedFiles files;  // for files opened from here on
  const auto rename = [](const std::string& what, const std::string& to) {
    return [=] { Sql(kDisc, "ALTER TABLE ArchiveHeader RENAME " + what + " TO " + to); };
  };
  struct Fault {
    const char* name;
    std::size_t item;  // the item of the walk at which it happens; 0: before the start
    std::function<void()> happen;
    const char* error;  // the beginning of the message; none for a stop by the user
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
      {"a full disk", writing, [&] { files.diskFull = true; }, "cmdCD.Click: (3026) ",
       [&] { files.diskFull = false; }},
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

}  // namespace
}  // namespace kxrestore::dialog_test
