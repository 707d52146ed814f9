// The engine calls the waiting callback during all work and waits, and the callback can stop it. A stopped
// statement changes nothing. Locks of other programs delay a user action for a limited time only.
#include <chrono>
#include <cstdio>
#include <functional>

#include "tests/engine/hooked_files.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::engine::testing {
namespace {

using namespace std::chrono_literals;

constexpr auto kNever = Clock::duration::max();
constexpr const char* kEndless =
    "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT i AS ID, 'f' || i AS Name FROM n";

class SqliteWaiting : public SqliteTest {
 protected:
  SqliteWaiting() { m_workspace = MakeDefaultWorkspace(); }
  void TearDown() override { m_workspace->SetWaiting({}); }

  // Installs a callback that requests a stop after `patience`.
  void Watch(Clock::duration patience) {
    m_start = m_last = Clock::now();
    m_longest = {};
    m_workspace->SetWaiting([this, patience] {
      Look();
      return patience == kNever || Clock::now() - m_start < patience;
    });
  }
  void Look() {
    const auto now = Clock::now();
    m_longest = std::max(m_longest, now - m_last);
    m_last = now;
  }

  // Stops an operation after 80 ms. Until then the engine must call the callback regularly, and soon
  // afterwards the operation must raise the error. A busy machine can delay anything, so there are up to
  // three tries.
  void ExpectStopped(const char* what, int number, const std::function<void()>& operation) {
    constexpr auto kStop = 80ms, kLatest = kStop + 200ms, kGap = 50ms;
    for (int tries = 1;; ++tries) {
      Watch(kStop);
      ExpectError(number, "", operation);
      Look();
      const auto spent = Clock::now() - m_start;
      m_workspace->SetWaiting({});
      std::printf("%s: ended after %.0f ms, longest without a turn %.0f ms\n", what,
                  std::chrono::duration<double, std::milli>(spent).count(),
                  std::chrono::duration<double, std::milli>(m_longest).count());
      EXPECT_GE(spent, kStop) << what;
      if (spent < kLatest && m_longest < kGap) return;
      if (tries == 3) return static_cast<void>(ADD_FAILURE() << what << " ended late or had no turns");
    }
  }

  Clock::time_point m_start, m_last;
  Clock::duration m_longest{};
};

TEST_F(SqliteWaiting, ForLocksCanBeStopped) {
  m_workspace->BeginAction();
  const auto database = Open();
  Rows(*database, "SetNames");
  m_test->Run("BEGIN EXCLUSIVE");
  ExpectStopped("reading", error_number::kCanceled, [&] { Rows(*database, "SELECT ID FROM Catalog"); });
  ExpectStopped("marking", error_number::kCanceled, [&] { testing::Mark(*database, 1); });
  ExpectStopped("a saved query", error_number::kCanceled, [&] { database->DeleteQueryDef("FullCatalog"); });
  m_workspace->EndAction();
  m_workspace->BeginAction();
  ExpectStopped("opening", error_number::kCanceled, [&] { Open(); });
  m_test->Run("COMMIT");

  const auto again = Open();
  ExpectStopped("committing", error_number::kRowLocked, [&] {
    testing::Mark(*again, 1);
    m_test->Run("BEGIN; SELECT count(*) FROM Catalog");
    try {
      m_workspace->Flush();
    } catch (...) {
      m_test->Run("COMMIT");
      throw;
    }
  });
  testing::Mark(*again, 2);
  m_workspace->EndAction();
  EXPECT_EQ(Marked(), "2,4");
  EXPECT_EQ(m_test->Ask("SELECT count(*) FROM sqlite_schema WHERE name = 'FullCatalog'"), "1");
}

// After the callback has requested a stop, a commit still has a short time, which is usually enough.
TEST_F(SqliteWaiting, AStopLeavesACommitAMoment) {
  m_workspace->BeginAction();
  SqliteTest::Mark(1);
  m_test->Run("BEGIN; SELECT count(*) FROM Catalog");
  int turns = 0;
  m_workspace->SetWaiting([&] {
    if (++turns == 2) m_test->Run("COMMIT");
    return false;
  });
  m_workspace->EndAction();
  EXPECT_EQ(Marked(), "1,4");
}

TEST_F(SqliteWaiting, LocksDelayAnActionOnlyOnce) {
  m_workspace = MakeImpatientWorkspace();  // 300 ms
  m_workspace->BeginAction();
  const auto database = Open();
  Rows(*database, "SetNames");
  m_test->Run("BEGIN EXCLUSIVE");
  const auto start = Clock::now();
  for (int i = 0; i < 5; ++i) {
    ExpectError(error_number::kRecordLocked, "", [&] { Rows(*database, "SELECT ID FROM Catalog"); });
    ExpectError(error_number::kRowLocked, "", [&] { testing::Mark(*database, 1); });
  }
  m_workspace->EndAction();
  const auto spent = Clock::now() - start;
  EXPECT_GE(spent, 200ms);
  EXPECT_LT(spent, 600ms);
  m_test->Run("COMMIT");
  m_workspace->BeginAction();
  SqliteTest::Mark(1);
  m_workspace->EndAction();
  EXPECT_EQ(Marked(), "1,4");
}

TEST_F(SqliteWaiting, EndlessWorkCanBeStopped) {
  m_test->Run(
      std::string("CREATE VIEW Endless AS ") + kEndless +
      "; CREATE VIEW Deaf AS SELECT * FROM Endless WHERE ID < 0; CREATE TABLE Copied (ID INTEGER);"
      "CREATE TRIGGER Slow AFTER UPDATE ON Catalog WHEN new.ID = 3 BEGIN SELECT count(*) FROM Endless; END");
  m_workspace->BeginAction();
  const auto database = Open();
  ExpectStopped("the first row", error_number::kCanceled, [&] { Rows(*database, "Deaf"); });
  ExpectStopped("all rows", error_number::kCanceled, [&] {
    const auto rows = database->OpenRecordset("Endless", RecordsetType::kSnapshot);
    while (!rows->Eof()) rows->MoveNext();
  });
  testing::Mark(*database, 1);
  ExpectStopped("a trigger", error_number::kCanceled, [&] { testing::Mark(*database, 3); });
  ExpectStopped("a mark by row", error_number::kCanceled, [&] {
    const auto row = database->OpenRecordset("SELECT * FROM Catalog WHERE ID = 3", RecordsetType::kDynaset);
    Change(*row, "Restore", true);
  });
  ExpectStopped("many rows", error_number::kCanceled,
                [&] { database->Execute("INSERT INTO Copied (ID) SELECT ID FROM Endless", kFailOnError); });
  // Writing while a list is open makes the engine read the rest of the list into memory.
  ExpectStopped("the rest of a list", error_number::kCanceled, [&] {
    const auto rows = database->OpenRecordset("Endless", RecordsetType::kSnapshot);
    testing::Mark(*database, 2);
  });
  testing::Mark(*database, 7);
  m_workspace->EndAction();
  EXPECT_EQ(Marked(), "1,4,7") << "and none of the stopped ones";
  EXPECT_EQ(m_test->Ask("SELECT count(*) FROM Copied"), "0");
}

TEST_F(SqliteWaiting, AListThatWasCutShortRaisesItsErrorAtTheEnd) {
  m_test->Run(std::string("CREATE VIEW Endless AS ") + kEndless);
  m_workspace->BeginAction();
  const auto database = Open();
  const auto rows = database->OpenRecordset("Endless", RecordsetType::kSnapshot);
  Watch(50ms);
  ExpectError(error_number::kCanceled, "", [&] { testing::Mark(*database, 1); });
  m_workspace->SetWaiting({});
  std::int64_t id = 1;
  EXPECT_EQ(rows->Fields("ID").Integer(), id);
  ExpectError(error_number::kCanceled, "", [&] {
    for (rows->MoveNext(); !rows->Eof(); rows->MoveNext()) ASSERT_EQ(rows->Fields("ID").Integer(), ++id);
  });
  EXPECT_TRUE(rows->Eof());
  EXPECT_GT(id, 100);
}

TEST_F(SqliteWaiting, SlowFilesDoNotBlockTheCallback) {
  WatchedFiles files;
  m_test = MakeSqliteFile();
  m_test->Run(CatalogSchema() + CatalogRows() + ManyRows(100, 9000));
  files.pageDelay = 2ms;
  files.syncDelay = 60ms;
  m_workspace->BeginAction();
  Watch(kNever);
  const auto database = Open();
  testing::Mark(*database, 101);
  m_workspace->Flush();
  Look();
  EXPECT_LT(m_longest, 100ms) << "marking and committing";
  ExpectStopped("reading slowly", error_number::kCanceled,
                [&] { Rows(*database, "SELECT ID FROM Catalog WHERE Filename = 'no such file'"); });
  ExpectStopped("marking slowly", error_number::kCanceled, [&] {
    database->Execute("UPDATE Catalog SET Restore = True WHERE Filename Like '*9*'", kFailOnError);
  });
  files.pageDelay = files.syncDelay = 0ms;
  m_workspace->EndAction();
  EXPECT_EQ(Marked(), "4,101");
}

}  // namespace
}  // namespace kxrestore::engine::testing
