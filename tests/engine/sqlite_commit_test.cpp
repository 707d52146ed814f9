// Commits in groups: what others see and when, and what an error leaves.
#include <chrono>
#include <thread>

#include "tests/engine/test_databases.h"

namespace kxrestore::engine {
namespace {

using testing::ExpectError;
using testing::Rows;

class SqliteCommit : public ::testing::Test {
 protected:
  void SetUp() override { m_test->Run(testing::CatalogSchema() + testing::CatalogRows()); }
  void Mark(int id) {
    EXPECT_EQ(m_workspace->OpenDatabase(m_test->Request())
                  ->Execute("UPDATE [Catalog] SET [Catalog].Restore = True WHERE (((Catalog.ID)=" +
                                std::to_string(id) + "));",
                            kFailOnError),
              1);
  }
  // What another connection sees.
  std::string Marked() {
    return m_test->Ask("SELECT group_concat(ID) FROM Catalog WHERE Restore = 1 ORDER BY ID");
  }

  std::unique_ptr<testing::TestDatabase> m_test = testing::SqliteKind().Make();
  std::unique_ptr<Workspace> m_workspace = testing::MakeImpatientWorkspace();
};

TEST_F(SqliteCommit, OutsideAnActionAtOnce) {
  Mark(1);
  EXPECT_EQ(Marked(), "1,4");
}

TEST_F(SqliteCommit, WithinAnActionTogether) {
  m_workspace->BeginAction();
  m_workspace->BeginAction();
  Mark(1);
  Mark(2);
  EXPECT_EQ(Marked(), "4") << "not yet";
  m_workspace->Idle();
  EXPECT_EQ(Marked(), "4") << "not before its time";
  std::this_thread::sleep_for(std::chrono::milliseconds(110));
  m_workspace->Idle();
  EXPECT_EQ(Marked(), "1,2,4");
  Mark(3);
  m_workspace->EndAction();
  EXPECT_EQ(Marked(), "1,2,4") << "an inner action ends nothing";
  m_workspace->Flush();
  EXPECT_EQ(Marked(), "1,2,3,4");
  Mark(7);
  m_workspace->EndAction();
  EXPECT_EQ(Marked(), "1,2,3,4,7");
}

TEST_F(SqliteCommit, UpdatesThemselvesKeepTheTime) {
  m_workspace->BeginAction();
  Mark(1);
  std::this_thread::sleep_for(std::chrono::milliseconds(110));
  Mark(2);
  EXPECT_EQ(Marked(), "1,2,4");
  m_workspace->EndAction();
}

TEST_F(SqliteCommit, AnErrorKeepsTheMarksBeforeIt) {
  m_test->Run(
      "CREATE TRIGGER Refuse BEFORE UPDATE ON Catalog WHEN new.ID = 3 BEGIN SELECT RAISE(ABORT, 'no'); END");
  m_workspace->BeginAction();
  Mark(1);
  const auto database = m_workspace->OpenDatabase(m_test->Request());
  ExpectError(error_number::kConstraint, "no",
              [&] { database->Execute("UPDATE Catalog SET Restore = 1 WHERE ID In (2, 3)", kFailOnError); });
  ExpectError(error_number::kParameterMissing, "Nothing",
              [&] { database->Execute("UPDATE Catalog SET Nothing = 1"); });
  Mark(7);
  m_workspace->EndAction();
  EXPECT_EQ(Marked(), "1,4,7") << "the failing statement undoes itself only";
}

TEST_F(SqliteCommit, ASnapshotOfOneActionStaysWhileCommitsPass) {
  m_workspace->BeginAction();
  {
    const auto snapshot =
        m_workspace->OpenDatabase(m_test->Request())
            ->OpenRecordset("SELECT ID, Filename FROM Catalog ORDER BY ID", RecordsetType::kSnapshot);
    std::string visited;
    for (; !snapshot->Eof(); snapshot->MoveNext()) {
      const std::string id = snapshot->Fields("ID").Text();
      visited += id + (snapshot->Fields("Filename").Text().empty() ? "!" : " ");
      Mark(std::stoi(id));
      m_workspace->Flush();
    }
    EXPECT_EQ(visited, "1 2 3 4 5 6 7 ");
  }
  m_workspace->EndAction();
  EXPECT_EQ(Marked(), "1,2,3,4,5,6,7");
}

// A reader in another process keeps a commit back; the marks wait, and only patience has an end.
TEST_F(SqliteCommit, ABlockedCommitIsTriedAgain) {
  m_workspace->BeginAction();
  Mark(1);
  m_test->Run("BEGIN; SELECT count(*) FROM Catalog");
  std::this_thread::sleep_for(std::chrono::milliseconds(110));
  const auto start = std::chrono::steady_clock::now();
  m_workspace->Idle();
  Mark(2);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(250)) << "nobody waits here";
  ExpectError(error_number::kRowLocked, "catälog.db", [&] { m_workspace->Flush(); });
  m_test->Run("COMMIT");
  m_workspace->EndAction();
  EXPECT_EQ(Marked(), "1,2,4");
}

TEST_F(SqliteCommit, ACommitThatNeverComesThroughIsToldAtTheEnd) {
  m_workspace->BeginAction();
  Mark(1);
  m_test->Run("BEGIN; SELECT count(*) FROM Catalog");
  ExpectError(error_number::kRowLocked, "catälog.db", [&] { m_workspace->EndAction(); });
  m_test->Run("COMMIT");
  EXPECT_EQ(Marked(), "4");
  Mark(2);
  EXPECT_EQ(Marked(), "2,4") << "usable again";
}

TEST_F(SqliteCommit, AnotherWriterBetweenOurGroups) {
  for (const char* mode : {"DELETE", "WAL"}) {
    m_test->Run(std::string("PRAGMA journal_mode = ") + mode + "; UPDATE Catalog SET Restore = 0");
    m_workspace->BeginAction();
    {
      const auto dynaset =
          m_workspace->OpenDatabase(m_test->Request())
              ->OpenRecordset("SELECT ID, Restore FROM Catalog ORDER BY ID", RecordsetType::kDynaset);
      if (mode[0] == 'W') m_test->Run("UPDATE SetNames SET Name = 'changed' WHERE ID = 3");
      for (; !dynaset->Eof(); dynaset->MoveNext()) {
        dynaset->Edit();
        dynaset->Fields("Restore").Set(true);
        dynaset->Update();
        m_workspace->Flush();
      }
    }
    m_workspace->EndAction();
    EXPECT_EQ(Marked(), "1,2,3,4,5,6,7") << mode;
  }
}

TEST_F(SqliteCommit, ASavedQueryMadeAgainUnchangedIsNotWritten) {
  const auto version = [&] { return m_test->Ask("PRAGMA schema_version"); };
  const auto database = m_workspace->OpenDatabase(m_test->Request());
  database->CreateQueryDef("Mine", "SELECT ID FROM Catalog WHERE Status = 2;");
  const std::string made = version();
  m_workspace->BeginAction();
  const auto again = m_workspace->OpenDatabase(m_test->Request());
  again->DeleteQueryDef("mine");
  ExpectError(error_number::kItemNotFound, "Mine", [&] { again->DeleteQueryDef("Mine"); });
  again->CreateQueryDef("Mine", "SELECT ID FROM Catalog WHERE Status = 1;");
  EXPECT_EQ(Rows(*again, "Mine"), std::vector<std::string>{"6"});
  m_workspace->Flush();
  const std::string changed = version();
  EXPECT_NE(changed, made);

  again->DeleteQueryDef("Mine");
  EXPECT_THROW(m_test->Run("DROP VIEW Mine"), std::runtime_error) << "it could not be left as it was";
  again->CreateQueryDef("Mine", "SELECT ID FROM Catalog WHERE Status = 1;");
  m_workspace->EndAction();
  EXPECT_EQ(version(), changed);
  database->DeleteQueryDef("Mine");
  database->Close();
  EXPECT_EQ(m_test->Ask("SELECT count(*) FROM sqlite_schema WHERE name = 'Mine'"), "0");
}

TEST_F(SqliteCommit, AWorkspaceThatGoesKeepsTheMarks) {
  m_workspace->BeginAction();
  Mark(1);
  m_workspace.reset();
  EXPECT_EQ(Marked(), "1,4");
}

}  // namespace
}  // namespace kxrestore::engine
