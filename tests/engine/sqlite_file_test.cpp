// Files that are no catalogs, or are damaged, locked or read-only.
#include <filesystem>
#include <fstream>

#ifndef _WIN32
#include <unistd.h>
#endif

#include "tests/engine/test_databases.h"

namespace kxrestore::engine {
namespace {

using testing::ExpectError;
using testing::PathOf;
using testing::ReadBytes;
using testing::Rows;

class SqliteFile : public testing::SqliteTest {
 protected:
  std::unique_ptr<Database> Open(const std::string& name) {
    return m_workspace->OpenDatabase({.name = name});
  }
  std::string Write(const std::string& name, std::string_view content) {
    const std::string file = m_folder.File(name);
    testing::WriteBytes(file, content);
    return file;
  }

  testing::TemporaryFolder m_folder;
  const std::string m_catalog = m_test->Request().name;
};

TEST_F(SqliteFile, WhatIsNoCatalogIsToldApart) {
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
  EXPECT_FALSE(std::filesystem::exists(PathOf(missing))) << "opening creates nothing";
  ExpectError(error_number::kFileNotFound, "", [&] { Open(""); });
  ExpectError(error_number::kFileNotFound, ":memory:", [&] { Open(":memory:"); });
  ExpectError(error_number::kCannotOpen, "", [&] { Open(m_folder.File("")); });
  ExpectError(error_number::kOdbcConnectionFailed, "", [&] {
    Workspace(Workspace::Backends())
        .OpenDatabase({.connect = "ODBC;DRIVER={sql server};DATABASE=x;SERVER=y"});
  });
}

TEST_F(SqliteFile, DamageShowsAsDamage) {
  m_test->Run(
      "WITH RECURSIVE n(i) AS (SELECT 100 UNION ALL SELECT i + 1 FROM n WHERE i < 3000) INSERT INTO Catalog "
      "(ID, Filename, SetNameID, Extension) SELECT i, 'C:\\some\\longer\\path\\file' || i, 1, '002' FROM n");
  std::string content = ReadBytes(m_catalog);
  ASSERT_GT(content.size(), 100000u);
  const std::string cut = Write("cut.db", std::string_view(content).substr(0, content.size() / 2));
  ExpectError(error_number::kDamaged, "cut.db", [&] { Rows(*Open(cut), "SELECT Filename FROM Catalog"); });
  for (std::size_t i = 40000; i < 90000; ++i) content[i] = static_cast<char>(i * 37);
  const std::string damaged = Write("scratched.db", content);
  ExpectError(error_number::kDamaged, "scratched.db",
              [&] { Rows(*Open(damaged), "SELECT Filename FROM Catalog"); });
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
}

TEST_F(SqliteFile, LockedByAnotherIsToldInTime) {
  const auto database = Open(m_catalog);
  const auto expectInTime = [](int number, auto operation) {
    const auto start = std::chrono::steady_clock::now();
    ExpectError(number, "catälog.db", operation);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
  };
  m_test->Run("BEGIN IMMEDIATE");
  EXPECT_EQ(Rows(*database, "SetNames").size(), 3u) << "a writer does not keep readers out";
  expectInTime(error_number::kRowLocked,
               [&] { database->Execute("UPDATE Catalog SET Restore = True", kFailOnError); });
  m_test->Run("COMMIT; BEGIN EXCLUSIVE");
  expectInTime(error_number::kRecordLocked, [&] { Rows(*database, "SetNames"); });
  expectInTime(error_number::kRecordLocked, [&] { Open(m_catalog); });
  m_test->Run("COMMIT");
  EXPECT_EQ(database->Execute("UPDATE Catalog SET Restore = True WHERE ID = 1"), 1) << "usable again";
  database->Close();
  {
    const auto alone = m_workspace->OpenDatabase({.name = m_catalog, .exclusive = true});
    EXPECT_EQ(Rows(*alone, "SetNames").size(), 3u);
    EXPECT_EQ(m_test->Ask("SELECT count(*) FROM SetNames"), "database is locked");
  }
  EXPECT_EQ(m_test->Ask("SELECT count(*) FROM SetNames"), "3");
}

// Drops root's rights, which would allow writing anywhere.
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

TEST_F(SqliteFile, WhatMayNotBeWrittenOrRead) {
  using std::filesystem::perms;
  const auto hidden = PathOf(m_folder.File("hidden.db"));
  std::filesystem::copy_file(PathOf(m_catalog), hidden);
  std::filesystem::permissions(hidden, perms::none);
  std::filesystem::permissions(PathOf(m_catalog), perms::owner_read | perms::group_read | perms::others_read);
  {
    [[maybe_unused]] const AsNobody nobody{};
    if (std::ofstream(PathOf(m_catalog), std::ios::app)) GTEST_SKIP() << "nothing is read-only for this user";
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
// Files that were copied to a read-only medium while a program was changing them.
TEST_F(SqliteFile, WhatWasLeftBehindIsNamed) {
  using std::filesystem::perms;
  const auto copy = [&](const char* folder, std::initializer_list<const char*> suffixes) {
    const std::filesystem::path target = m_folder.File(folder);
    std::filesystem::create_directory(target);
    for (const char* suffix : suffixes) {
      const auto file = target / (std::string("c.db") + suffix);
      std::filesystem::copy_file(PathOf(m_catalog + suffix), file);
      std::filesystem::permissions(file, perms::owner_read | perms::group_read | perms::others_read);
    }
    std::filesystem::permissions(target, perms::owner_write | perms::group_write | perms::others_write,
                                 std::filesystem::perm_options::remove);
    std::filesystem::permissions(
        target, perms::group_read | perms::group_exec | perms::others_read | perms::others_exec,
        std::filesystem::perm_options::add);
    return (target / "c.db").string();
  };
  m_test->Run(
      "PRAGMA cache_size = 1; PRAGMA cache_spill = 1; CREATE TABLE Big (T); WITH RECURSIVE n(i) AS (SELECT 1 "
      "UNION ALL SELECT i + 1 FROM n WHERE i < 100) INSERT INTO Big SELECT hex(randomblob(1000)) FROM n; "
      "BEGIN; "
      "UPDATE Big SET T = ''");
  const std::string interrupted = copy("interrupted", {"", "-journal"});
  m_test->Run("ROLLBACK; PRAGMA journal_mode = WAL; UPDATE Big SET T = ''");
  const std::string logged = copy("logged", {"", "-wal"});
  m_test->Run("PRAGMA wal_checkpoint(TRUNCATE)");
  const std::string clean = copy("clean", {""});

  const AsNobody nobody{};
  if (std::ofstream(interrupted, std::ios::app)) GTEST_SKIP() << "nothing is read-only for this user";
  ExpectError(error_number::kCannotOpen, "c.db-journal' holds what must be put back first",
              [&] { Open(interrupted); });
  ExpectError(error_number::kCannotOpen, "in the log '" + logged + "-wal'", [&] { Open(logged); });
  ExpectError(error_number::kCannotOpen, "write-ahead mode (WAL)", [&] { Open(clean); });
}
#endif

// Catalogs may come from anywhere. Their views, triggers and columns may read and compute, nothing else.
TEST_F(SqliteFile, ACatalogDoesNothingOfItsOwn) {
  m_test->Run(
      "CREATE VIEW Loader AS SELECT load_extension('x') AS ID;"
      "CREATE VIEW Words AS SELECT fts3_tokenizer('simple') AS ID;"
      "CREATE VIEW Pages AS SELECT name AS ID FROM pragma_database_list;"
      "CREATE VIEW Huge AS SELECT length(zeroblob(900000000)) AS ID;"
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
  EXPECT_EQ(Rows(*database, "Masks").size(), 2u) << "what saved queries need still works";
  EXPECT_EQ(database->Execute("INSERT INTO Log (ID) VALUES (4)", kFailOnError), 1);
  EXPECT_EQ(Rows(*database, "Log"), std::vector<std::string>{"4|8"});
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
  cells[0] = '\x0F';  // the first one begins in the last bytes of the page and would reach out of it
  cells[1] = '\xFE';
  const std::string file = Write("cells.db", content);
  ExpectError(error_number::kDamaged, "cells.db", [&] { Rows(*Open(file), "SetNames"); });
}

TEST_F(SqliteFile, OddContentsDoNotDisturb) {
  m_test->Run(
      "UPDATE Catalog SET Filename = CAST(X'610062FFC3' AS TEXT), File = X'00FF', OrigSize = 1.5 WHERE ID = "
      "1; "
      "CREATE TABLE Dated (D DATETIME, B BIT); INSERT INTO Dated VALUES ('2026-11-16 02:25:30', -1), "
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
}  // namespace kxrestore::engine
