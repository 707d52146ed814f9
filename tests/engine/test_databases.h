// Databases for tests. The conformance suites run against every kind that is available on this machine.
#pragma once

#include <gtest/gtest.h>

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

// A folder of its own that goes with the object.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  std::string File(std::string_view name) const;

 private:
  std::filesystem::path m_path;
};

// Files by names in UTF-8.
std::filesystem::path PathOf(const std::string& name);
std::string ReadBytes(const std::string& name);
void WriteBytes(const std::string& name, std::string_view bytes);

// One database made for a test, reached beside the engine through its own interface.
class TestDatabase {
 public:
  virtual ~TestDatabase() = default;
  virtual OpenRequest Request() const = 0;
  // Plain statements in standard SQL, one after the other.
  virtual void Run(std::string_view sql) = 0;
  // The first value of the first row, as text; "NULL" for null.
  virtual std::string Ask(std::string_view sql) = 0;
};

struct TestDatabaseKind {
  std::string name;
  std::function<std::unique_ptr<TestDatabase>()> make;
  // Rows are marked and never added, deleted or otherwise changed; Booleans are never NULL; and queries are
  // saved for this program only.
  bool onlyMarks = false;
  friend void PrintTo(const TestDatabaseKind& kind, std::ostream* out) { *out << kind.name; }
};

const std::vector<TestDatabaseKind>& TestDatabaseKinds();
std::vector<TestDatabaseKind> WritableDatabaseKinds();  // those that do more than marking
// A workspace that opens databases of this kind.
std::unique_ptr<Workspace> MakeWorkspace(const TestDatabaseKind& kind);
// Of a file that is there already, or of a new one.
std::unique_ptr<TestDatabase> MakeSqliteFile(const std::string& path = {});

// PostgreSQL behind the ODBC driver manager, under the driver name that hosts ask for, in a database of this
// process's own that is emptied for every test. scripts/test_server.sh starts the server and names it in the
// environment. Spelling: a server catalog that was made without quotes has its names in small letters.
enum class Spelling { kFolded, kQuoted };
std::unique_ptr<TestDatabase> MakePostgres(Spelling spelling);
// Whether the environment names a server. Under scripts/test.sh one that is missing is a failure.
bool HasTestServer();
std::string ServerSetting(const char* name);  // of the environment
// A connect string as hosts give it, for that server.
std::string ServerConnect(const std::string& database, const std::string& user, const std::string& password);

// A workspace for files that does not wait long for locks.
std::unique_ptr<Workspace> MakeImpatientWorkspace();

// The tables of a catalog and the saved query FullCatalog, without rows; and a few rows that tests agree on.
std::string CatalogSchema();
std::string CatalogRows();

// Reads all rows that are left; the values of a row are joined by "|", null is "NULL".
std::vector<std::string> Rows(Recordset& recordset);
std::vector<std::string> Rows(Database& database, std::string_view source,
                              RecordsetType type = RecordsetType::kSnapshot);
std::vector<std::string> Sorted(std::vector<std::string> rows);

// Sets a field of the current row.
void Change(Recordset& rows, std::string_view field, Value value);

// Marks the row of that number in a catalog.
void Mark(Database& database, int id);

// Expects the same rows in every table of two catalogs, and some in each.
void ExpectSameCatalog(Database& catalog, Database& other);

// Expects an engine error of that number whose description holds the piece.
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

// A catalog in a SQLite file, opened without much waiting for locks.
class SqliteTest : public ::testing::Test {
 protected:
  SqliteTest() { m_test->Run(CatalogSchema() + CatalogRows()); }
  std::unique_ptr<Database> Open() { return m_workspace->OpenDatabase(m_test->Request()); }
  void Mark(int id) { testing::Mark(*Open(), id); }
  // The numbers that another connection sees.
  std::string Marked() {
    return m_test->Ask("SELECT group_concat(ID) FROM Catalog WHERE Restore = 1 ORDER BY ID");
  }

  std::unique_ptr<TestDatabase> m_test = MakeSqliteFile();
  std::unique_ptr<Workspace> m_workspace = MakeImpatientWorkspace();
};

// A catalog in a database of every kind.
class ConformanceTest : public ::testing::TestWithParam<TestDatabaseKind> {
 protected:
  void SetUp() override {
    m_test->Run(CatalogSchema() + CatalogRows());
    m_database = m_workspace->OpenDatabase(m_test->Request());
  }
  // Reads through a saved query beside the engine; where queries are not stored, in a workspace of its own.
  std::string AskQuery(const std::string& sql) {
    if (!GetParam().onlyMarks) return m_test->Ask(sql);
    return Rows(*MakeWorkspace(GetParam())->OpenDatabase(m_test->Request()), sql).at(0);
  }
  // What a statement ends in that adds or deletes rows, and otherwise in `number`.
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
