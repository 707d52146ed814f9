// Databases for tests. The conformance suite runs against every kind that a maker is registered for.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
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

class TestDatabaseKind {
 public:
  virtual ~TestDatabaseKind() = default;
  virtual std::string Name() const = 0;
  virtual std::unique_ptr<TestDatabase> Make() const = 0;
  // False for a driver that prepares for the views it has once seen.
  virtual bool NoticesViewsOfOthers() const { return true; }
  virtual std::unique_ptr<Workspace> MakeWorkspace() const { return MakeDefaultWorkspace(); }
};

// Every kind that can be tested here and now.
const std::vector<const TestDatabaseKind*>& TestDatabaseKinds();
const TestDatabaseKind& SqliteKind();

// A workspace for files that does not wait long for locks.
std::unique_ptr<Workspace> MakeImpatientWorkspace();

// The tables of a catalog and the saved query FullCatalog, without rows; and a few rows that tests agree on.
std::string CatalogSchema();
std::string CatalogRows();

// Opens and reads all rows; the values of a row are joined by "|", null is "NULL".
std::vector<std::string> Rows(Database& database, std::string_view source,
                              RecordsetType type = RecordsetType::kSnapshot);

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

// A test over every kind of database.
class ConformanceTest : public ::testing::TestWithParam<const TestDatabaseKind*> {
 protected:
  void SetUp() override {
    m_test = GetParam()->Make();
    m_workspace = GetParam()->MakeWorkspace();
    m_test->Run(CatalogSchema());
    m_test->Run(CatalogRows());
    m_database = m_workspace->OpenDatabase(m_test->Request());
  }

  std::unique_ptr<TestDatabase> m_test;
  std::unique_ptr<Workspace> m_workspace;
  std::unique_ptr<Database> m_database;
};

#define KX_CONFORMANCE(suite)                                                                 \
  INSTANTIATE_TEST_SUITE_P(Engines, suite, ::testing::ValuesIn(testing::TestDatabaseKinds()), \
                           [](const auto& engine) { return engine.param->Name(); })

}  // namespace kxrestore::engine::testing
