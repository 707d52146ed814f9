// Databases for tests. The conformance suites run against every kind that is available on this machine.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/error.h"
#include "engine/database.h"
#include "engine/error_numbers.h"

namespace kxrestore::engine::testing {

using Clock = std::chrono::steady_clock;
using Strings = std::vector<std::string>;

// A new folder, which the destructor deletes.
class TemporaryFolder {
 public:
  // `name` is part of the folder's name.
  explicit TemporaryFolder(const std::u8string& name = u8"kxrestore-test");
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  const std::filesystem::path& Path() const { return m_path; }
  std::string File(std::string_view name) const;

 private:
  std::filesystem::path m_path;
};

// Files by names in UTF-8.
std::filesystem::path PathOf(const std::string& name);
std::string ReadBytes(const std::string& name);
void WriteBytes(const std::string& name, std::string_view bytes);

// A database for one test. Run and Ask reach it without the engine under test.
class TestDatabase {
 public:
  virtual ~TestDatabase() = default;
  virtual OpenRequest Request() const = 0;
  // Executes standard SQL statements, separated by semicolons.
  virtual void Run(std::string_view sql) = 0;
  // The first value of the first row as text; "NULL" for null, "no row" without a row.
  virtual std::string Ask(std::string_view sql) = 0;
};

struct TestDatabaseKind {
  std::string name;
  std::function<std::unique_ptr<TestDatabase>()> make;
  // The engine can mark rows, but not add, delete or otherwise change them. Booleans are never NULL, and
  // saved queries exist in this program only.
  bool onlyMarks = false;
  friend void PrintTo(const TestDatabaseKind& kind, std::ostream* out) { *out << kind.name; }
};

const std::vector<TestDatabaseKind>& TestDatabaseKinds();
std::vector<TestDatabaseKind> WritableDatabaseKinds();  // without those of onlyMarks
// A workspace that opens databases of this kind.
std::unique_ptr<Workspace> MakeWorkspace(const TestDatabaseKind& kind);
// Opens the file or creates it. Without a path the file is a new one in a temporary folder.
std::unique_ptr<TestDatabase> MakeSqliteFile(const std::string& path = {});

// PostgreSQL through the ODBC driver manager, under the driver name that hosts ask for. Each process has its
// own database on the server, which every call empties. scripts/test_server.sh starts the server and
// describes it in the environment. PostgreSQL folds the names of tables that were created without quotes to
// lower case.
enum class Spelling { kFolded, kQuoted };
std::unique_ptr<TestDatabase> MakePostgres(Spelling spelling);
// Whether the environment names a server. scripts/test.sh fails without one.
bool HasTestServer();
std::string ServerSetting(const char* name);  // a variable of the environment
// A connect string for the test server, as a host passes it.
std::string ServerConnect(const std::string& database, const std::string& user, const std::string& password);

// A workspace for SQLite files that waits 300 ms for locks.
std::unique_ptr<Workspace> MakeImpatientWorkspace();

// SQL that creates the tables of a catalog and the saved query FullCatalog, and SQL for a few rows.
std::string CatalogSchema();
std::string CatalogRows();
// SQL for SQLite that adds unmarked files with the numbers `first` to `last`.
std::string ManyRows(int first, int last);

// Reads the remaining rows. "|" separates the values of a row; null is "NULL".
Strings Rows(Recordset& recordset);
Strings Rows(Database& database, std::string_view source, RecordsetType type = RecordsetType::kSnapshot);
Strings Sorted(Strings rows);

// Sets a field of the current row.
void Change(Recordset& rows, std::string_view field, Value value);

// Marks the catalog row with that ID.
void Mark(Database& database, int id);

// Expects that the tables of two catalogs have the same rows and that none is empty.
void ExpectSameCatalog(Database& catalog, Database& other);

// Expects an engine error with that number whose description contains the piece.
template <typename Operation>
void ExpectError(int number, std::string_view piece, Operation operation) {
  try {
    operation();
    ADD_FAILURE() << "no error, " << number << " expected";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), number) << error.Description();
    EXPECT_NE(error.Description().find(piece), std::string::npos) << error.Description();
  }
}

// A catalog in a SQLite file, in an impatient workspace.
class SqliteTest : public ::testing::Test {
 protected:
  SqliteTest() { m_test->Run(CatalogSchema() + CatalogRows()); }
  std::unique_ptr<Database> Open() { return m_workspace->OpenDatabase(m_test->Request()); }
  void Mark(int id) { testing::Mark(*Open(), id); }
  // The IDs of the marked rows as another connection sees them.
  std::string Marked() {
    return m_test->Ask("SELECT group_concat(ID) FROM Catalog WHERE Restore = 1 ORDER BY ID");
  }

  std::unique_ptr<TestDatabase> m_test = MakeSqliteFile();
  std::unique_ptr<Workspace> m_workspace = MakeImpatientWorkspace();
};

// A catalog in each kind of database.
class ConformanceTest : public ::testing::TestWithParam<TestDatabaseKind> {
 protected:
  void SetUp() override {
    m_test->Run(CatalogSchema() + CatalogRows());
    m_database = m_workspace->OpenDatabase(m_test->Request());
  }
  // Reads through a saved query from outside the workspace under test.
  std::string AskQuery(const std::string& sql) {
    if (!GetParam().onlyMarks) return m_test->Ask(sql);
    return Rows(*MakeWorkspace(GetParam())->OpenDatabase(m_test->Request()), sql).at(0);
  }
  // The error of a statement that adds or deletes rows, where databases of other kinds raise `number`.
  int WritingError(int number) const {
    return GetParam().onlyMarks ? error_number::kCannotCreateObject : number;
  }

  std::unique_ptr<TestDatabase> m_test = GetParam().make();
  std::unique_ptr<Workspace> m_workspace = MakeWorkspace(GetParam());
  std::unique_ptr<Database> m_database;
};

#define KX_CONFORMANCE_OF(suite, kinds)                                \
  INSTANTIATE_TEST_SUITE_P(Engines, suite, ::testing::ValuesIn(kinds), \
                           [](const auto& kind) { return kind.param.name; })
#define KX_CONFORMANCE(suite) KX_CONFORMANCE_OF(suite, engine::testing::TestDatabaseKinds())

}  // namespace kxrestore::engine::testing
