// What marking asks of the disk, and what becomes of marks when it is full.
#include <chrono>

#include "tests/engine/test_databases.h"
#include "tests/engine/watched_files.h"

namespace kxrestore::engine {
namespace {

using testing::ExpectError;

class SqliteDisk : public ::testing::Test {
 protected:
  void SetUp() override {
    m_test->Run(testing::CatalogSchema() + testing::CatalogRows());
    m_test->Run(
        "WITH RECURSIVE n(i) AS (SELECT 100 UNION ALL SELECT i + 1 FROM n WHERE i < 2099) INSERT INTO "
        "Catalog "
        "(ID, Filename, SetNameID, Extension, Restore) SELECT i, 'C:\\file' || i, 1, '002', 0 FROM n");
  }
  void Mark(int id) {
    m_workspace->OpenDatabase(m_test->Request())
        ->Execute("UPDATE [Catalog] SET [Catalog].Restore = True WHERE (((Catalog.ID)=" + std::to_string(id) +
                      "));",
                  kFailOnError);
  }
  std::string Marked() { return m_test->Ask("SELECT count(*) FROM Catalog WHERE Restore = 1"); }

  testing::WatchedFiles m_files;
  std::unique_ptr<testing::TestDatabase> m_test = testing::SqliteKind().Make();
  std::unique_ptr<Workspace> m_workspace = testing::MakeImpatientWorkspace();
};

TEST_F(SqliteDisk, MarksShareTheirSyncs) {
  m_workspace->BeginAction();
  m_files.ResetSyncs();
  const auto start = std::chrono::steady_clock::now();
  for (int id = 100; id < 2100; ++id) Mark(id);
  m_workspace->EndAction();
  const auto spent =
      std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
  EXPECT_EQ(Marked(), "2001");
  // A commit syncs the journal and the file, some file systems the folder too.
  EXPECT_LE(m_files.Syncs(), 5 * (2 + spent.count() / 100));
  EXPECT_GE(m_files.Syncs(), 1) << "nothing was made safe";
}

TEST_F(SqliteDisk, FullDiskKeepsWhatWasCommitted) {
  m_workspace->BeginAction();
  Mark(100);
  m_workspace->Flush();
  Mark(101);
  m_files.SetDiskFull(true);
  ExpectError(error_number::kDiskFull, "catälog.db", [&] { m_workspace->Flush(); });
  ExpectError(error_number::kDiskFull, "catälog.db", [&] {
    Mark(102);
    m_workspace->Flush();
  });
  m_files.SetDiskFull(false);
  Mark(103);
  m_workspace->EndAction();
  EXPECT_EQ(m_test->Ask("SELECT group_concat(ID) FROM Catalog WHERE Restore = 1"), "4,100,103");
}

// The disk fills while pages are moved out of memory: nothing may be committed after that, in part or alone.
TEST_F(SqliteDisk, FullDiskWithinATransactionUndoesIt) {
  m_test->Run("CREATE TABLE Big (T TEXT)");
  m_workspace->BeginAction();
  const auto database = m_workspace->OpenDatabase(m_test->Request());
  const std::string insert = "INSERT INTO Big (T) VALUES ('" + std::string(60000, 'x') + "')";
  database->BeginTrans();
  m_files.SetDiskFull(true);
  ExpectError(error_number::kDiskFull, "catälog.db", [&] {
    for (int i = 0; i < 5000; ++i) database->Execute(insert, kFailOnError);
  });
  m_files.SetDiskFull(false);
  ExpectError(error_number::kNoTransaction, "undone", [&] { database->Execute(insert, kFailOnError); });
  ExpectError(error_number::kNoTransaction, "undone", [&] { database->CommitTrans(); });
  database->Rollback();
  EXPECT_EQ(m_test->Ask("SELECT count(*) FROM Big"), "0");
  database->BeginTrans();
  database->Execute(insert, kFailOnError);
  m_files.SetDiskFull(true);
  ExpectError(error_number::kDiskFull, "catälog.db", [&] { database->CommitTrans(); });
  m_files.SetDiskFull(false);
  database->Rollback();
  EXPECT_EQ(m_test->Ask("SELECT count(*) FROM Big"), "0");
  m_workspace->EndAction();
}

TEST_F(SqliteDisk, FullDiskAtTheEndOfTheAction) {
  m_workspace->BeginAction();
  Mark(100);
  m_files.SetDiskFull(true);
  ExpectError(error_number::kDiskFull, "catälog.db", [&] { m_workspace->EndAction(); });
  EXPECT_FALSE(m_workspace->InAction());
  m_files.SetDiskFull(false);
  Mark(101);
  EXPECT_EQ(m_test->Ask("SELECT group_concat(ID) FROM Catalog WHERE Restore = 1"), "4,101");
}

}  // namespace
}  // namespace kxrestore::engine
