// Transactions and saved queries on every kind of database. A transaction takes effect completely or not at
// all. Saved queries can be created, read back and deleted, and queries of other programs can be read.
#include <chrono>
#include <functional>
#include <thread>

#include "tests/engine/test_databases.h"

namespace kxrestore::engine::testing {
namespace {

class TransactionConformance : public ConformanceTest {
 protected:
  void SetUp() override {
    ConformanceTest::SetUp();
    m_database.reset();
    m_workspace->BeginAction();
    m_database = m_workspace->OpenDatabase(m_test->Request());
  }
  void Mark(int id) { testing::Mark(*m_database, id); }
  // The sum of the marked IDs among 1, 2 and 3, as another connection sees them.
  std::string Marks() { return m_test->Ask("SELECT sum(ID) FROM Catalog WHERE ID < 4 AND Restore = 1"); }
};

TEST_P(TransactionConformance, KeepsTheGroupsOfTheActionUncommitted) {
  Mark(1);
  m_database->BeginTrans();
  EXPECT_EQ(Marks(), "1") << "BeginTrans commits the waiting group";
  Mark(2);
  std::this_thread::sleep_for(std::chrono::milliseconds(110));
  Mark(3);
  m_workspace->Idle();
  m_workspace->Flush();
  EXPECT_EQ(Marks(), "1");
  m_workspace->EndAction();
  EXPECT_EQ(Marks(), "1") << "the end of an action does not end a transaction";
  m_database->CommitTrans();
  EXPECT_EQ(Marks(), "6");
}

TEST_P(TransactionConformance, IsUndoneAsAWhole) {
  const std::function<void()> ends[] = {[&] { m_database->Rollback(); }, [&] { m_database->Close(); },
                                        [&] { m_database.reset(); }};
  for (const auto& end : ends) {
    m_database = m_workspace->OpenDatabase(m_test->Request());
    m_database->BeginTrans();
    Mark(2);
    m_database->CreateQueryDef("Passing", "SELECT ID FROM SetNames;");
    const auto snapshot =
        m_database->OpenRecordset("SELECT Restore FROM Catalog WHERE ID < 3", RecordsetType::kSnapshot);
    snapshot->MoveNext();
    Mark(3);
    ExpectError(WritingError(error_number::kDuplicateKey), "",
                [&] { m_database->Execute("INSERT INTO SetNames (ID) VALUES (1)", kFailOnError); });
    end();
    EXPECT_TRUE(snapshot->Fields("Restore").Boolean()) << "the snapshot does not change";
    m_workspace->Flush();
    EXPECT_EQ(Marks(), "NULL");
    m_database = m_workspace->OpenDatabase(m_test->Request());
    ExpectError(error_number::kItemNotFound, "Passing", [&] { m_database->QueryText("Passing"); });
  }
}

TEST_P(TransactionConformance, Misuse) {
  ExpectError(error_number::kNoTransaction, "without first beginning", [&] { m_database->CommitTrans(); });
  ExpectError(error_number::kNoTransaction, "without first beginning", [&] { m_database->Rollback(); });
  m_database->BeginTrans();
  Mark(1);
  ExpectError(error_number::kInvalidOperation, "already", [&] { m_database->BeginTrans(); });
  const auto other = m_workspace->OpenDatabase(m_test->Request());
  ExpectError(error_number::kNoTransaction, "without first beginning", [&] { other->CommitTrans(); });
  EXPECT_EQ(Marks(), "NULL");
  m_database->CommitTrans();
  EXPECT_EQ(Marks(), "1");
  m_database->Close();
  ExpectError(error_number::kObjectInvalid, "", [&] { m_database->BeginTrans(); });
}

KX_CONFORMANCE(TransactionConformance);

using SavedQueryConformance = ConformanceTest;
class StoredQueryConformance : public ConformanceTest {};  // kinds that store queries in the database

TEST_P(SavedQueryConformance, IsCreatedReadAndDeleted) {
  ExpectError(error_number::kItemNotFound, "Mine", [&] { m_database->QueryText("Mine"); });
  ExpectError(error_number::kItemNotFound, "Mine", [&] { m_database->DeleteQueryDef("Mine"); });
  ExpectError(error_number::kItemNotFound, "Catalog", [&] { m_database->DeleteQueryDef("Catalog"); });
  m_database->CreateQueryDef(
      "Mine", "SELECT ID, IIf(IsNull([Plugin]),'none',[Plugin]) AS P FROM Catalog WHERE ID In (4, 7);");
  ExpectError(error_number::kObjectExists, "mine",
              [&] { m_database->CreateQueryDef("mine", "SELECT ID FROM Catalog"); });
  ExpectError(error_number::kObjectExists, "Catalog",
              [&] { m_database->CreateQueryDef("Catalog", "SELECT 1"); });
  EXPECT_EQ(Rows(*m_database, "SELECT P FROM Mine ORDER BY ID"), (Strings{"none", "Exchange Server"}));
  EXPECT_EQ(m_database->QueryText("MINE").back(), ';');
  EXPECT_EQ(AskQuery("SELECT P FROM Mine ORDER BY ID"), "none") << "other connections can read it";
  // The returned text creates the same query again.
  const std::string text = m_database->QueryText("Mine");
  m_database->DeleteQueryDef("mINE");
  ExpectError(error_number::kTableNotFound, "Mine",
              [&] { Rows(*m_database, "SELECT P FROM Mine ORDER BY ID"); });
  m_database->CreateQueryDef("Mine", text);
  EXPECT_EQ(m_database->QueryText("Mine"), text);
  EXPECT_EQ(Rows(*m_database, "Mine").size(), 2u);
}

TEST_P(SavedQueryConformance, RefusesOtherStatements) {
  ExpectError(error_number::kSyntax, "FROM", [&] { m_database->CreateQueryDef("q", "SELECT FROM Catalog"); });
  ExpectError(error_number::kTextAfterEnd, "DELETE",
              [&] { m_database->CreateQueryDef("q", "SELECT ID FROM Catalog; DELETE FROM Catalog"); });
  ExpectError(error_number::kInvalidOperation, "DELETE",
              [&] { m_database->CreateQueryDef("q", "DELETE FROM Catalog"); });
  m_database->CreateQueryDef("odd ]\"name's", "SELECT ID FROM Catalog");
  m_database->DeleteQueryDef("odd ]\"name's");
  m_database->CreateQueryDef("later", "SELECT x FROM NotThereYet");
  ExpectError(error_number::kTableNotFound, "NotThereYet", [&] { Rows(*m_database, "later"); });
}

TEST_P(StoredQueryConformance, ReadsQueriesOfOtherPrograms) {
  m_test->Run(
      "CREATE VIEW \"Odd One\" AS -- the files\n  SELECT \"Catalog\".\"ID\" AS \"Order\", /* x */ Name FROM "
      "\"Catalog\" LEFT OUTER JOIN SetNames ON SetNames.ID = Catalog.SetNameID WHERE Filename LIKE "
      "'%:__.doc' AND Catalog.ID IN (1, 2, 3) AND Extension NOT IN ('x', 'y')");
  const std::string text = m_database->QueryText("odd one");
  EXPECT_EQ(text.substr(0, 6), "SELECT");
  EXPECT_EQ(text.find('"'), std::string::npos) << text;
  EXPECT_EQ(text.find("files"), std::string::npos) << text;
  m_database->CreateQueryDef("Again", text);
  EXPECT_EQ(Rows(*m_database, "Again"), Rows(*m_database, "Odd One"));
  EXPECT_EQ(Rows(*m_database, "SELECT [Order] FROM Again ORDER BY [Order]"), (Strings{"1", "2"}));
  m_test->Run("CREATE VIEW Named (A, \"B c\") AS SELECT ID, Name FROM SetNames WHERE Name LIKE 'A%';");
  m_database->CreateQueryDef("NamedAgain", m_database->QueryText("Named"));
  EXPECT_EQ(Rows(*m_database, "SELECT [B c] FROM NamedAgain WHERE A < 4"), (Strings{"Archive"}));
}

TEST_P(SavedQueryConformance, KeepsMasks) {
  for (const std::string mask : {"C:\\*", "*[_]*", "?:\\*.doc", "*''s.tx?"}) {
    m_database->CreateQueryDef("Masked", "SELECT ID FROM Catalog WHERE OrigName Like '" + mask + "'");
    m_database->CreateQueryDef("MaskedAgain", m_database->QueryText("Masked"));
    EXPECT_EQ(Rows(*m_database, "MaskedAgain"), Rows(*m_database, "Masked")) << mask;
    for (const char* name : {"Masked", "MaskedAgain"}) m_database->DeleteQueryDef(name);
  }
}

TEST_P(SavedQueryConformance, FollowsChangesOfOtherDatabases) {
  m_workspace->BeginAction();
  const auto database = m_workspace->OpenDatabase(m_test->Request());
  m_database->CreateQueryDef("Changing", "SELECT ID FROM SetNames");
  EXPECT_EQ(Rows(*database, "SELECT * FROM Changing").front(), "1");
  m_database->DeleteQueryDef("Changing");
  m_database->CreateQueryDef("Changing", "SELECT ID, Name FROM SetNames");
  EXPECT_EQ(Rows(*database, "SELECT * FROM Changing").front(), "1|Office");
  m_workspace->EndAction();
}

KX_CONFORMANCE(SavedQueryConformance);
KX_CONFORMANCE_OF(StoredQueryConformance, WritableDatabaseKinds());

}  // namespace
}  // namespace kxrestore::engine::testing
