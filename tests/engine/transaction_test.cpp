// Transactions: all or nothing, whatever else the action gathers, and however they end.
#include <chrono>
#include <functional>
#include <thread>

#include "tests/engine/test_databases.h"

namespace kxrestore::engine {
namespace {

using testing::ExpectError;
using testing::Rows;

class TransactionConformance : public testing::ConformanceTest {
 protected:
  void SetUp() override {
    ConformanceTest::SetUp();
    m_database.reset();
    m_workspace->BeginAction();
    m_database = m_workspace->OpenDatabase(m_test->Request());
  }
  void Mark(int id) {
    m_database->Execute("UPDATE Catalog SET Restore = True WHERE ID = " + std::to_string(id), kFailOnError);
  }
  // What another connection sees of the rows 1, 2 and 3.
  std::string Marks() { return m_test->Ask("SELECT sum(ID) FROM Catalog WHERE ID < 4 AND Restore = 1"); }
};

TEST_P(TransactionConformance, HoldsBackTheGroupsOfTheAction) {
  Mark(1);
  m_database->BeginTrans();
  EXPECT_EQ(Marks(), "1") << "what waited is committed";
  Mark(2);
  std::this_thread::sleep_for(std::chrono::milliseconds(110));
  Mark(3);
  m_workspace->Idle();
  m_workspace->Flush();
  EXPECT_EQ(Marks(), "1");
  m_workspace->EndAction();
  EXPECT_EQ(Marks(), "1") << "an action ends no transaction";
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
    ExpectError(error_number::kDuplicateKey, "",
                [&] { m_database->Execute("INSERT INTO SetNames (ID) VALUES (1)", kFailOnError); });
    end();
    EXPECT_TRUE(snapshot->Fields("Restore").Boolean()) << "a snapshot stays what it was";
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

}  // namespace
}  // namespace kxrestore::engine
