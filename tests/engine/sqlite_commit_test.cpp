// Commits in groups: when other programs see a mark, how often the disk is synced, and what remains after an
// error.
#include <chrono>
#include <thread>

#include "tests/engine/hooked_files.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::engine::testing {
namespace {

using SqliteCommit = SqliteTest;

void LetTimePass() {
  std::this_thread::sleep_for(std::chrono::milliseconds(110));
}

TEST_F(SqliteCommit, AtOnceOutsideAnActionAndInGroupsWithin) {
  Mark(5);
  EXPECT_EQ(Marked(), "4,5");
  m_workspace->BeginAction();
  m_workspace->BeginAction();
  Mark(1);
  Mark(2);
  m_workspace->Idle();
  EXPECT_EQ(Marked(), "4,5") << "not before 100 ms have passed";
  LetTimePass();
  m_workspace->Idle();
  EXPECT_EQ(Marked(), "1,2,4,5");
  Mark(3);
  m_workspace->EndAction();
  EXPECT_EQ(Marked(), "1,2,4,5") << "the end of an inner action commits nothing";
  m_workspace->Flush();
  EXPECT_EQ(Marked(), "1,2,3,4,5");
  Mark(6);
  LetTimePass();
  Mark(7);
  EXPECT_EQ(Marked(), "1,2,3,4,5,6,7") << "an update commits the group when its time is up";
  m_test->Run("UPDATE Catalog SET Restore = 0");
  Mark(6);
  m_workspace->EndAction();
  EXPECT_EQ(Marked(), "6");
  m_workspace->BeginAction();
  Mark(7);
  m_workspace.reset();
  EXPECT_EQ(Marked(), "6") << "a destroyed workspace commits nothing";
}

TEST_F(SqliteCommit, AnErrorKeepsTheMarksBeforeIt) {
  m_test->Run(
      "CREATE TRIGGER Refuse BEFORE UPDATE ON Catalog WHEN new.ID = 3 BEGIN SELECT RAISE(ABORT, 'no'); END");
  m_workspace->BeginAction();
  Mark(1);
  const auto database = Open();
  ExpectError(error_number::kConstraint, "no",
              [&] { database->Execute("UPDATE Catalog SET Restore = 1 WHERE ID In (2, 3)", kFailOnError); });
  ExpectError(error_number::kParameterMissing, "Nothing",
              [&] { database->Execute("UPDATE Catalog SET Nothing = 1"); });
  Mark(7);
  m_workspace->EndAction();
  EXPECT_EQ(Marked(), "1,4,7") << "only the failing statement is undone";
}

// A reader in another process blocks a commit. The marks wait until the time limit. Then they are lost, and
// the loss is reported once.
TEST_F(SqliteCommit, ABlockedCommitIsTriedAgainAndReportedAtTheEnd) {
  m_workspace->BeginAction();
  Mark(1);
  m_test->Run("BEGIN; SELECT count(*) FROM Catalog");
  LetTimePass();
  const auto start = Clock::now();
  m_workspace->Idle();
  Mark(2);
  EXPECT_LT(Clock::now() - start, std::chrono::milliseconds(250)) << "neither call waits";
  ExpectError(error_number::kRowLocked, "catälog.db", [&] { m_workspace->Flush(); });
  EXPECT_NO_THROW(m_workspace->Flush());
  m_test->Run("COMMIT");
  Mark(3);
  m_workspace->EndAction();
  EXPECT_EQ(Marked(), "3,4");

  // A mark does not report the loss of earlier marks.
  m_workspace->BeginAction();
  m_test->Run("BEGIN; SELECT count(*) FROM Catalog");
  Mark(1);
  std::this_thread::sleep_for(std::chrono::milliseconds(450));
  Mark(5);
  ExpectError(error_number::kRowLocked, "catälog.db", [&] { m_workspace->Idle(); });
  m_test->Run("COMMIT");
  Mark(2);
  m_workspace->EndAction();
  EXPECT_EQ(Marked(), "2,3,4");

  m_workspace->BeginAction();
  Mark(1);
  m_test->Run("BEGIN; SELECT count(*) FROM Catalog");
  ExpectError(error_number::kRowLocked, "catälog.db", [&] { m_workspace->EndAction(); });
  m_test->Run("COMMIT");
  EXPECT_EQ(Marked(), "2,3,4");
  Mark(7);
  EXPECT_EQ(Marked(), "2,3,4,7") << "usable again";
}

TEST_F(SqliteCommit, AnotherWriterBetweenGroups) {
  for (const char* mode : {"DELETE", "WAL"}) {
    m_test->Run(std::string("PRAGMA journal_mode = ") + mode + "; UPDATE Catalog SET Restore = 0");
    m_workspace->BeginAction();
    {
      const auto dynaset =
          Open()->OpenRecordset("SELECT ID, Restore FROM Catalog ORDER BY ID", RecordsetType::kDynaset);
      if (mode[0] == 'W') m_test->Run("UPDATE SetNames SET Name = 'changed' WHERE ID = 3");
      for (; !dynaset->Eof(); dynaset->MoveNext()) {
        Change(*dynaset, "Restore", true);
        m_workspace->Flush();
      }
    }
    m_workspace->EndAction();
    EXPECT_EQ(Marked(), "1,2,3,4,5,6,7") << mode;
  }
}

TEST_F(SqliteCommit, ASavedQueryMadeAgainUnchangedIsNotWritten) {
  const auto version = [&] { return m_test->Ask("PRAGMA schema_version"); };
  const auto database = Open();
  database->CreateQueryDef("Mine", "SELECT ID FROM Catalog WHERE Status = 2;");
  const std::string made = version();
  m_workspace->BeginAction();
  const auto again = Open();
  EXPECT_EQ(Rows(*again, "Mine").size(), 6u);
  again->DeleteQueryDef("mine");
  ExpectError(error_number::kItemNotFound, "Mine", [&] { again->DeleteQueryDef("Mine"); });
  again->CreateQueryDef("Mine", "SELECT ID AS Number FROM Catalog WHERE Status = 1;");
  EXPECT_EQ(again->OpenRecordset("Mine", RecordsetType::kSnapshot)->Fields("Number").Integer(), 6);
  m_workspace->Flush();
  const std::string changed = version();
  EXPECT_NE(changed, made);

  again->DeleteQueryDef("Mine");
  EXPECT_THROW(m_test->Run("DROP VIEW Mine"), std::runtime_error) << "the engine has deleted it";
  again->CreateQueryDef("Mine", "SELECT ID AS Number FROM Catalog WHERE Status = 1;");
  m_workspace->EndAction();
  EXPECT_EQ(version(), changed);
  database->DeleteQueryDef("Mine");
  database->Close();
  EXPECT_EQ(m_test->Ask("SELECT count(*) FROM sqlite_schema WHERE name = 'Mine'"), "0");
}

class SqliteDisk : public SqliteCommit {
 protected:
  SqliteDisk() {
    m_test = MakeSqliteFile();  // m_files applies to this one
    m_test->Run(CatalogSchema() + CatalogRows());
  }
  WatchedFiles m_files;
};

TEST_F(SqliteDisk, AGroupOfMarksNeedsOneCommit) {
  m_test->Run(ManyRows(100, 2099));
  m_workspace->BeginAction();
  m_files.syncs = 0;
  const auto start = Clock::now();
  for (int id = 100; id < 2100; ++id) Mark(id);
  m_workspace->EndAction();
  const auto tenths = (Clock::now() - start) / std::chrono::milliseconds(100);
  EXPECT_EQ(m_test->Ask("SELECT count(*) FROM Catalog WHERE Restore = 1"), "2001");
  // A commit syncs the journal, the file and in some cases the folder.
  EXPECT_LE(m_files.syncs, 5 * (2 + tenths));
  EXPECT_GE(m_files.syncs, 1) << "nothing was synced";
}

TEST_F(SqliteDisk, FullDiskKeepsCommittedMarks) {
  m_workspace->BeginAction();
  Mark(1);
  m_workspace->Flush();
  Mark(2);
  m_files.diskFull = true;
  ExpectError(error_number::kDiskFull, "catälog.db", [&] { m_workspace->Flush(); });
  ExpectError(error_number::kDiskFull, "catälog.db", [&] {
    Mark(3);
    m_workspace->Flush();
  });
  m_files.diskFull = false;
  Mark(6);
  m_files.diskFull = true;
  ExpectError(error_number::kDiskFull, "catälog.db", [&] { m_workspace->EndAction(); });
  EXPECT_FALSE(m_workspace->InAction());
  m_files.diskFull = false;
  Mark(7);
  EXPECT_EQ(Marked(), "1,4,7");
}

// The disk is full when a large transaction has to write pages before its end. The whole transaction is
// undone.
TEST_F(SqliteDisk, FullDiskWithinATransactionUndoesIt) {
  m_test->Run("CREATE TABLE Big (T TEXT)");
  m_workspace->BeginAction();
  const auto database = Open();
  const std::string insert = "INSERT INTO Big (T) VALUES ('" + std::string(60000, 'x') + "')";
  database->BeginTrans();
  m_files.diskFull = true;
  ExpectError(error_number::kDiskFull, "catälog.db", [&] {
    for (int i = 0; i < 5000; ++i) database->Execute(insert, kFailOnError);
  });
  m_files.diskFull = false;
  ExpectError(error_number::kNoTransaction, "undone", [&] { database->Execute(insert, kFailOnError); });
  ExpectError(error_number::kNoTransaction, "undone", [&] { database->CommitTrans(); });
  database->Rollback();
  EXPECT_EQ(m_test->Ask("SELECT count(*) FROM Big"), "0");
  database->BeginTrans();
  database->Execute(insert, kFailOnError);
  m_files.diskFull = true;
  ExpectError(error_number::kDiskFull, "catälog.db", [&] { database->CommitTrans(); });
  m_files.diskFull = false;
  database->Rollback();
  EXPECT_EQ(m_test->Ask("SELECT count(*) FROM Big"), "0");
  m_workspace->EndAction();
}

}  // namespace
}  // namespace kxrestore::engine::testing
