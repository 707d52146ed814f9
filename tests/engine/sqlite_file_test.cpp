// Files that are not catalogs, and catalogs that are damaged, locked or read-only.
#include <filesystem>
#include <fstream>

#ifndef _WIN32
#include <unistd.h>
#endif

#include "engine/sqlite/sqlite_backend.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::engine::testing {
namespace {

class SqliteFile : public SqliteTest {
 protected:
  std::unique_ptr<Database> Open(const std::string& name) {
    return m_workspace->OpenDatabase({.name = name});
  }
  std::string Write(const std::string& name, std::string_view content) {
    const std::string file = m_folder.File(name);
    WriteBytes(file, content);
    return file;
  }

  TemporaryFolder m_folder;
  const std::string m_catalog = m_test->Request().name;
};

TEST_F(SqliteFile, OtherFilesAreRefused) {
  using namespace std::literals;
  const struct {
    int number;
    const char* name;
    std::string content;
  } files[] = {{error_number::kUnrecognizedFormat, "empty.db", ""},
               {error_number::kUnrecognizedFormat, "short.db", "SQLite"},
               {error_number::kUnrecognizedFormat, "text.db", std::string(5000, 'x')},
               {error_number::kCannotCreateObject, "old.mdb", "\0\1\0\0Standard Jet DB\0 and more"s},
               {error_number::kCannotCreateObject, "new.accdb", "\0\1\0\0Standard ACE DB\0 and more"s},
               {error_number::kDamaged, "header.db", "SQLite format 3\0"s},
               {error_number::kDamaged, "garbage.db", "SQLite format 3\0"s + std::string(8000, '\xA5')}};
  for (const auto& file : files) {
    ExpectError(file.number, file.name, [&] { Open(Write(file.name, file.content)); });
  }
  const std::string missing = m_folder.File("missing.db");
  ExpectError(error_number::kFileNotFound, "missing.db", [&] { Open(missing); });
  // Deleted between the look at the file and its opening.
  ExpectError(error_number::kCannotOpen, "missing.db",
              [&] { sqlite::MakeSqliteBackend()->Open({.name = missing}); });
  EXPECT_FALSE(std::filesystem::exists(PathOf(missing))) << "opening creates nothing";
  ExpectError(error_number::kFileNotFound, "", [&] { Open(""); });
  ExpectError(error_number::kFileNotFound, "catälog.db'", [&] { Open(m_catalog + '\0' + "x"); });
  ExpectError(error_number::kFileNotFound, ":memory:", [&] { Open(":memory:"); });
  ExpectError(error_number::kCannotOpen, "", [&] { Open(m_folder.File("")); });
  ExpectError(error_number::kOdbcConnectionFailed, "", [&] {
    Workspace(Workspace::Backends())
        .OpenDatabase({.connect = "ODBC;DRIVER={sql server};DATABASE=x;SERVER=y"});
  });
}

TEST_F(SqliteFile, DamageIsReported) {
  m_test->Run(ManyRows(100, 3000));
  std::string content = ReadBytes(m_catalog);
  ASSERT_GT(content.size(), 100000u);
  m_workspace->BeginAction();
  Open(m_catalog);  // its connection is kept until the end of the action
  const std::string cut = Write("cut.db", std::string_view(content).substr(0, content.size() / 2));
  ExpectError(error_number::kDamaged, "cut.db", [&] { Rows(*Open(cut), "SELECT Filename FROM Catalog"); });
  m_workspace->EndAction();
  for (std::size_t i = 40000; i < 90000; ++i) content[i] = static_cast<char>(i * 37);
  const std::string damaged = Write("scratched.db", content);
  ExpectError(error_number::kDamaged, "scratched.db",
              [&] { Rows(*Open(damaged), "SELECT Filename FROM Catalog"); });
  const auto database = Open(damaged);
  const auto rows = database->OpenRecordset("SELECT Filename FROM Catalog", RecordsetType::kSnapshot);
  database->Execute("UPDATE SetNames SET Name = 'x' WHERE ID = 1");  // reads the rest of the list first
  ExpectError(error_number::kDamaged, "scratched.db", [&] {
    while (!rows->Eof()) rows->MoveNext();
  });
  ExpectError(error_number::kDamaged, "scratched.db", [&] {
    Open(damaged)->Execute("UPDATE Catalog SET Restore = True WHERE Filename Like '*2999'");
  });
}

TEST_F(SqliteFile, OpeningAndReadingChangesNothing) {
  const std::string before = ReadBytes(m_catalog);
  const auto written = std::filesystem::last_write_time(PathOf(m_catalog));
  m_workspace->BeginAction();
  Rows(*Open(m_catalog), "SELECT * FROM FullCatalog ORDER BY OrigName");
  m_workspace->EndAction();
  EXPECT_EQ(ReadBytes(m_catalog), before);
  EXPECT_EQ(std::filesystem::last_write_time(PathOf(m_catalog)), written);
  // The next action looks at the file anew.
  const std::string other = Write("other.db", before);
  for (const bool replaced : {false, true}) {
    if (replaced) WriteBytes(other, "text");
    m_workspace->BeginAction();
    if (replaced) {
      ExpectError(error_number::kUnrecognizedFormat, "other.db", [&] { Open(other); });
    } else {
      Open(other);
    }
    m_workspace->EndAction();
  }
}

TEST_F(SqliteFile, LocksOfOthersAreReported) {
  const auto database = Open(m_catalog);
  m_test->Run("BEGIN IMMEDIATE");
  EXPECT_EQ(Rows(*database, "SetNames").size(), 3u) << "a writer does not lock readers out";
  ExpectError(error_number::kRowLocked, "catälog.db",
              [&] { database->Execute("UPDATE Catalog SET Restore = True", kFailOnError); });
  m_test->Run("COMMIT; BEGIN EXCLUSIVE");
  ExpectError(error_number::kRecordLocked, "catälog.db", [&] { Rows(*database, "SetNames"); });
  ExpectError(error_number::kRecordLocked, "catälog.db", [&] { Open(m_catalog); });
  m_test->Run("COMMIT");
  EXPECT_EQ(database->Execute("UPDATE Catalog SET Restore = True WHERE ID = 1"), 1) << "usable again";
  database->Close();
  m_workspace->BeginAction();
  Open(m_catalog)->Close();
  {
    const auto alone = m_workspace->OpenDatabase({.name = m_catalog, .exclusive = true});
    EXPECT_EQ(Rows(*alone, "SetNames").size(), 3u);
    EXPECT_EQ(m_test->Ask("SELECT count(*) FROM SetNames"), "database is locked");
  }
  EXPECT_EQ(m_test->Ask("SELECT count(*) FROM SetNames"), "3");
  m_workspace->EndAction();
}

// Gives up the rights of root, who may write to every file, until the destructor.
struct AsNobody {
#ifndef _WIN32
  AsNobody() {
    Become(65534);
  }
  ~AsNobody() {
    Become(0);
  }
  void Become(uid_t user) const {
    EXPECT_TRUE(!wasRoot || seteuid(user) == 0);
  }
  const bool wasRoot = geteuid() == 0;
#endif
};

TEST_F(SqliteFile, PermissionsAreReported) {
  using std::filesystem::perms;
  const auto hidden = PathOf(m_folder.File("hidden.db"));
  std::filesystem::copy_file(PathOf(m_catalog), hidden);
  std::filesystem::permissions(hidden, perms::none);
  std::filesystem::permissions(PathOf(m_catalog), perms{0444});
  {
    [[maybe_unused]] const AsNobody nobody{};
    if (std::ofstream(PathOf(m_catalog), std::ios::app))
      GTEST_SKIP() << "this user may write to read-only files";
    ExpectError(error_number::kReadOnly, "catälog.db", [&] {
      const auto database = Open(m_catalog);
      EXPECT_EQ(Rows(*database, "SetNames").size(), 3u);
      database->Execute("UPDATE Catalog SET Restore = True", kFailOnError);
    });
#ifndef _WIN32
    ExpectError(error_number::kCannotOpen, "hidden.db", [&] { Open(m_folder.File("hidden.db")); });
#endif
  }
  for (const auto& file : {PathOf(m_catalog), hidden}) std::filesystem::permissions(file, perms::owner_all);
}

#ifndef _WIN32
// Catalogs that were copied to a read-only medium while a program was changing them.
TEST_F(SqliteFile, LeftoverJournalsAreNamed) {
  using std::filesystem::perms;
  const auto copy = [&](const char* folder, std::initializer_list<const char*> suffixes) {
    const std::filesystem::path target = m_folder.File(folder);
    std::filesystem::create_directory(target);
    for (const char* suffix : suffixes) {
      const auto file = target / (std::string("c.db") + suffix);
      std::filesystem::copy_file(PathOf(m_catalog + suffix), file);
      std::filesystem::permissions(file, perms{0444});
    }
    std::filesystem::permissions(target, perms{0555});
    return (target / "c.db").string();
  };
  m_test->Run(
      "PRAGMA cache_size = 1; PRAGMA cache_spill = 1; CREATE TABLE Big (T); WITH RECURSIVE n(i) AS (SELECT 1 "
      "UNION ALL SELECT i + 1 FROM n WHERE i < 100) INSERT INTO Big SELECT hex(randomblob(1000)) FROM n; "
      "BEGIN; UPDATE Big SET T = ''");
  const std::string interrupted = copy("interrupted", {"", "-journal"});
  m_test->Run("ROLLBACK; PRAGMA journal_mode = WAL; UPDATE Big SET T = ''");
  const std::string logged = copy("logged", {"", "-wal"});
  m_test->Run("PRAGMA wal_checkpoint(TRUNCATE)");
  const std::string clean = copy("clean", {""});

  const AsNobody nobody{};
  if (std::ofstream(interrupted, std::ios::app)) GTEST_SKIP() << "this user may write to read-only files";
  ExpectError(error_number::kCannotOpen, "c.db-journal' holds what must be put back first",
              [&] { Open(interrupted); });
  ExpectError(error_number::kCannotOpen, "in the log '" + logged + "-wal'", [&] { Open(logged); });
  ExpectError(error_number::kCannotOpen, "write-ahead mode (WAL)", [&] { Open(clean); });
}

TEST_F(SqliteFile, ALogThatIsCutOffIsDamage) {
  m_test->Run("PRAGMA journal_mode = WAL; UPDATE SetNames SET Name = 'x'");
  std::filesystem::resize_file(PathOf(m_catalog + "-wal"), 100);
  ExpectError(error_number::kDamaged, "catälog.db", [&] { Rows(*Open(m_catalog), "SetNames"); });
}
#endif

// A catalog may come from anywhere, so its views, triggers and columns may only read and compute.
TEST_F(SqliteFile, ViewsAndTriggersOnlyReadAndCompute) {
  m_test->Run(
      "CREATE VIEW Loader AS SELECT load_extension('x') AS ID;"
      "CREATE VIEW Words AS SELECT fts3_tokenizer('simple') AS ID;"
      "CREATE VIEW Pages AS SELECT name AS ID FROM pragma_database_list;"
      "CREATE VIEW Huge AS SELECT length(zeroblob(900000000)) AS ID;"
      "CREATE VIEW Orphan AS SELECT ID FROM Gone;"
      "CREATE VIEW Masks AS SELECT ID FROM Catalog WHERE kx_like(Filename, '*a.DOC');"
      "CREATE TABLE Log (ID INTEGER, Twice INTEGER AS (ID * 2));"
      "CREATE TRIGGER Spreads AFTER UPDATE ON Catalog WHEN new.ID = 1 BEGIN UPDATE Catalog SET Restore = 1; "
      "END;"
      "CREATE TRIGGER Refuses BEFORE UPDATE ON SetNames BEGIN SELECT RAISE(ABORT, 'no') WHERE new.ID = 1; "
      "END");
  const auto database = Open(m_catalog);
  for (const char* view : {"Loader", "Words", "Pages", "Huge"}) {
    EXPECT_THROW(Rows(*database, view), Error) << view;
  }
  ExpectError(error_number::kTableNotFound, "'Gone'", [&] { Rows(*database, "Orphan"); });
  EXPECT_EQ(Rows(*database, "Masks").size(), 2u) << "saved queries may use masks";
  EXPECT_EQ(database->Execute("INSERT INTO Log (ID) VALUES (4)", kFailOnError), 1);
  EXPECT_EQ(Rows(*database, "Log"), Strings{"4|8"});
  ExpectError(error_number::kReadOnly, "trigger 'Spreads'",
              [&] { database->Execute("UPDATE Catalog SET Restore = True WHERE ID = 2", kFailOnError); });
  EXPECT_EQ(m_test->Ask("SELECT group_concat(ID) FROM Catalog WHERE Restore = 1"), "4");
  EXPECT_EQ(database->Execute("UPDATE SetNames SET Name = 'x' WHERE ID = 2", kFailOnError), 1);
  ExpectError(error_number::kConstraint, "no",
              [&] { database->Execute("UPDATE SetNames SET Name = 'x' WHERE ID = 1", kFailOnError); });
}

// A page with inconsistent cells is detected before it is used.
TEST_F(SqliteFile, CellsAreChecked) {
  m_test->Run("PRAGMA journal_mode = DELETE; VACUUM");
  const int page = std::stoi(m_test->Ask("SELECT rootpage FROM sqlite_schema WHERE name = 'SetNames'"));
  const int size = std::stoi(m_test->Ask("PRAGMA page_size"));
  std::string content = ReadBytes(m_catalog);
  char* const cells = content.data() + static_cast<std::ptrdiff_t>(page - 1) * size + 8;
  // The third cell starts in the second byte of its own pointer, but is otherwise whole: 13 bytes, row 3, a
  // header of 3 bytes, NULL, and a text of 10 bytes.
  const std::string_view cell(
      "\0\x0D\3\3\0\x21"
      "overlapped",
      16);
  std::copy(cell.begin(), cell.end(), cells + 4);
  const std::string file = Write("cells.db", content);
  ExpectError(error_number::kDamaged, "cells.db", [&] { Rows(*Open(file), "SetNames"); });
}

TEST_F(SqliteFile, UnusualValuesAreRead) {
  m_test->Run(
      "UPDATE Catalog SET Filename = CAST(X'610062FFC3' AS TEXT), File = X'00FF', OrigSize = 1.5 WHERE ID = "
      "1; CREATE TABLE Dated (D DATETIME, B BIT); INSERT INTO Dated VALUES ('2026-11-16 02:25:30', -1), "
      "('soon', 0)");
  const auto database = Open(m_catalog);
  const auto odd = database->OpenRecordset("SELECT Filename, File, OrigSize FROM Catalog WHERE ID = 1",
                                           RecordsetType::kDynaset);
  EXPECT_EQ(odd->Fields("Filename").Text(), std::string("a\0b\xFF\xC3", 5));
  EXPECT_EQ(odd->Fields("File").Text(), std::string("\0\xFF", 2));
  EXPECT_EQ(odd->FieldValue(2), ValueView(1.5));
  EXPECT_EQ(Rows(*database, "SELECT ID FROM Catalog WHERE Filename Like \"*b*\"").size(), 1u);
  EXPECT_EQ(Rows(*database, "SELECT Count(*) AS N FROM Catalog WHERE Filename = 'a'").front(), "0");
  ExpectError(error_number::kSyntax, "", [&] { Rows(*database, std::string_view("SELECT 1 \0 x", 12)); });
  const auto dated = database->OpenRecordset("Dated", RecordsetType::kSnapshot);
  EXPECT_EQ(dated->FieldValue(0), ValueView(DateTime{2026, 11, 16, 2, 25, 30})) << "declared dates are dates";
  EXPECT_EQ(dated->FieldValue(1), ValueView(true));
  dated->MoveNext();
  EXPECT_EQ(dated->Fields("D").Text(), "soon");
}

}  // namespace
}  // namespace kxrestore::engine::testing
