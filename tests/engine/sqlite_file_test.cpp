// Files that are no catalog, are damaged, locked or cannot be written.
#include <filesystem>
#include <fstream>

#ifndef _WIN32
#include <unistd.h>
#endif

#include "tests/engine/test_databases.h"

namespace kxrestore::engine {
namespace {

using testing::ExpectError;
using testing::Rows;

class SqliteFile : public ::testing::Test {
 protected:
  std::unique_ptr<Database> Open(const std::string& name) {
    OpenRequest request;
    request.name = name;
    return m_workspace->OpenDatabase(request);
  }
  static std::filesystem::path Path(const std::string& name) {
    return std::filesystem::path(std::u8string(name.begin(), name.end()));
  }
  std::string Write(const std::string& name, std::string_view content) {
    const std::string file = m_folder.File(name);
    std::ofstream(Path(file), std::ios::binary) << content;
    return file;
  }
  static std::string Read(const std::string& file) {
    std::ifstream stream(Path(file), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  std::unique_ptr<testing::TestDatabase> MakeCatalog() {
    auto test = testing::SqliteKind().Make();
    test->Run(testing::CatalogSchema() + testing::CatalogRows());
    return test;
  }

  testing::TemporaryFolder m_folder;
  std::unique_ptr<Workspace> m_workspace = testing::MakeImpatientWorkspace();
};

TEST_F(SqliteFile, WhatIsNoCatalogIsToldApart) {
  using namespace std::literals;
  const std::string missing = m_folder.File("missing.db");
  ExpectError(error_number::kFileNotFound, "missing.db", [&] { Open(missing); });
  EXPECT_FALSE(std::filesystem::exists(Path(missing))) << "opening creates nothing";
  ExpectError(error_number::kFileNotFound, "", [&] { Open(""); });
  ExpectError(error_number::kFileNotFound, ":memory:", [&] { Open(":memory:"); });
  ExpectError(error_number::kCannotOpen, "", [&] { Open(m_folder.File("")); });
  ExpectError(error_number::kUnrecognizedFormat, "empty", [&] { Open(Write("empty.db", "")); });
  ExpectError(error_number::kUnrecognizedFormat, "short", [&] { Open(Write("short.db", "SQLite")); });
  ExpectError(error_number::kUnrecognizedFormat, "text",
              [&] { Open(Write("text.db", std::string(5000, 'x'))); });
  ExpectError(error_number::kCannotCreateObject, "install",
              [&] { Open(Write("old.mdb", "\0\1\0\0Standard Jet DB\0 and more"sv)); });
  ExpectError(error_number::kCannotCreateObject, "new.accdb",
              [&] { Open(Write("new.accdb", "\0\1\0\0Standard ACE DB\0 and more"sv)); });
  ExpectError(error_number::kDamaged, "header", [&] { Open(Write("header.db", "SQLite format 3\0"sv)); });
  ExpectError(error_number::kDamaged, "garbage",
              [&] { Open(Write("garbage.db", "SQLite format 3\0"s + std::string(8000, '\xA5'))); });
  OpenRequest server;
  server.connect = "ODBC;DRIVER={sql server};DATABASE=x;SERVER=y;UID=z;PWD=";
  Workspace::Backends none;
  ExpectError(error_number::kOdbcConnectionFailed, "",
              [&] { Workspace(std::move(none)).OpenDatabase(server); });
}

TEST_F(SqliteFile, DamageShowsAsDamage) {
  auto test = MakeCatalog();
  const std::string file = test->Request().name;
  test->Run(
      "WITH RECURSIVE n(i) AS (SELECT 100 UNION ALL SELECT i + 1 FROM n WHERE i < 3000) INSERT INTO Catalog "
      "(ID, Filename, SetNameID, Extension) SELECT i, 'C:\\some\\longer\\path\\file' || i, 1, '002' FROM n");
  const std::string good = Read(file);
  ASSERT_GT(good.size(), 100000u);
  const std::string cut = Write("cut.db", std::string_view(good).substr(0, good.size() / 2));
  ExpectError(error_number::kDamaged, "cut.db", [&] { Rows(*Open(cut), "SELECT Filename FROM Catalog"); });
  std::string scratched = good;
  for (std::size_t i = 40000; i < 90000; ++i) scratched[i] = static_cast<char>(i * 37);
  const std::string damaged = Write("scratched.db", scratched);
  ExpectError(error_number::kDamaged, "scratched.db",
              [&] { Rows(*Open(damaged), "SELECT Filename FROM Catalog"); });
  ExpectError(error_number::kDamaged, "scratched.db", [&] {
    Open(damaged)->Execute("UPDATE Catalog SET Restore = True WHERE Filename Like '*2999'");
  });
}

TEST_F(SqliteFile, OpeningAndReadingChangesNothing) {
  auto test = MakeCatalog();
  const std::string file = test->Request().name;
  const std::string before = Read(file);
  const auto written = std::filesystem::last_write_time(Path(file));
  m_workspace->BeginAction();
  Rows(*Open(file), "SELECT * FROM FullCatalog ORDER BY OrigName");
  m_workspace->EndAction();
  EXPECT_EQ(Read(file), before);
  EXPECT_EQ(std::filesystem::last_write_time(Path(file)), written);
}

TEST_F(SqliteFile, LockedByAnotherIsToldInTime) {
  auto test = MakeCatalog();
  const auto database = Open(test->Request().name);
  const auto timed = [](auto operation) {
    const auto start = std::chrono::steady_clock::now();
    operation();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
  };
  test->Run("BEGIN IMMEDIATE");
  EXPECT_EQ(Rows(*database, "SetNames").size(), 3u) << "a writer does not keep readers out";
  timed([&] {
    ExpectError(error_number::kRowLocked, "catälog.db",
                [&] { database->Execute("UPDATE Catalog SET Restore = True", kFailOnError); });
  });
  test->Run("COMMIT; BEGIN EXCLUSIVE");
  timed(
      [&] { ExpectError(error_number::kRecordLocked, "catälog.db", [&] { Rows(*database, "SetNames"); }); });
  timed([&] { ExpectError(error_number::kRecordLocked, "catälog.db", [&] { Open(test->Request().name); }); });
  test->Run("COMMIT");
  EXPECT_EQ(database->Execute("UPDATE Catalog SET Restore = True WHERE ID = 1"), 1) << "usable again";
}

TEST_F(SqliteFile, ExclusiveKeepsOthersOut) {
  auto test = MakeCatalog();
  OpenRequest request = test->Request();
  request.exclusive = true;
  {
    const auto database = m_workspace->OpenDatabase(request);
    EXPECT_EQ(Rows(*database, "SetNames").size(), 3u);
    EXPECT_EQ(test->Ask("SELECT count(*) FROM SetNames"), "database is locked");
  }
  EXPECT_EQ(test->Ask("SELECT count(*) FROM SetNames"), "3");
}

TEST_F(SqliteFile, ReadOnlyFileIsReadNotWritten) {
  auto test = MakeCatalog();
  const std::string file = test->Request().name;
  std::filesystem::permissions(Path(file), std::filesystem::perms::owner_read |
                                               std::filesystem::perms::group_read |
                                               std::filesystem::perms::others_read);
#ifndef _WIN32
  const bool wasRoot = geteuid() == 0;  // root may write everything
  if (wasRoot) {
    ASSERT_EQ(seteuid(65534), 0);
  }
#endif
  if (std::ofstream(Path(file), std::ios::app)) GTEST_SKIP() << "nothing is read-only for this user";
  ExpectError(error_number::kReadOnly, "catälog.db", [&] {
    const auto database = Open(file);
    EXPECT_EQ(Rows(*database, "SetNames").size(), 3u);
    database->Execute("UPDATE Catalog SET Restore = True", kFailOnError);
  });
#ifndef _WIN32
  std::filesystem::path hidden = Path(m_folder.File("hidden.db"));
  if (wasRoot) {
    ASSERT_EQ(seteuid(0), 0);
  }
  std::filesystem::copy_file(Path(file), hidden);
  std::filesystem::permissions(hidden, std::filesystem::perms::none);
  if (wasRoot) {
    ASSERT_EQ(seteuid(65534), 0);
  }
  ExpectError(error_number::kCannotOpen, "hidden.db", [&] { Open(m_folder.File("hidden.db")); });
  if (wasRoot) {
    ASSERT_EQ(seteuid(0), 0);
  }
#endif
  std::filesystem::permissions(Path(file), std::filesystem::perms::owner_all);
}

TEST_F(SqliteFile, OddContentsDoNotDisturb) {
  auto test = MakeCatalog();
  test->Run(
      "UPDATE Catalog SET Filename = CAST(X'610062FFC3' AS TEXT), File = X'00FF', OrigSize = 1.5, "
      "Plugin = '' WHERE ID = 1");
  const auto database = Open(test->Request().name);
  const auto recordset = database->OpenRecordset("SELECT Filename, File, OrigSize FROM Catalog WHERE ID = 1",
                                                 RecordsetType::kDynaset);
  EXPECT_EQ(recordset->Fields("Filename").Text(), std::string("a\0b\xFF\xC3", 5));
  EXPECT_EQ(recordset->Fields("File").Text(), std::string("\0\xFF", 2));
  EXPECT_EQ(recordset->FieldValue(2), ValueView(1.5));
  EXPECT_EQ(Rows(*database, "SELECT ID FROM Catalog WHERE Filename Like \"*b*\"").size(), 1u);
  EXPECT_EQ(Rows(*database, "SELECT Count(*) AS N FROM Catalog WHERE Filename = 'a'").front(), "0");
  ExpectError(error_number::kSyntax, "", [&] { Rows(*database, std::string_view("SELECT 1 \0 x", 12)); });
}

TEST_F(SqliteFile, DeclaredDatesAreDates) {
  auto test = MakeCatalog();
  test->Run(
      "CREATE TABLE Dated (D DATETIME, B BIT); INSERT INTO Dated VALUES ('2026-11-16 02:25:30', -1), "
      "('soon', 0)");
  const auto recordset = Open(test->Request().name)->OpenRecordset("Dated", RecordsetType::kSnapshot);
  ASSERT_TRUE(std::holds_alternative<DateTime>(recordset->FieldValue(0)));
  EXPECT_EQ(recordset->Fields("D").Text(), "2026-11-16 02:25:30");
  EXPECT_EQ(recordset->FieldValue(1), ValueView(true));
  recordset->MoveNext();
  EXPECT_EQ(recordset->Fields("D").Text(), "soon");
}

}  // namespace
}  // namespace kxrestore::engine
