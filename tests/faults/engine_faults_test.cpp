// The engine while memory, the database's memory or its files fail at one call, once or from that call on. No
// exception ends the program. A failed statement changes nothing, and committed marks are in the file.
// Afterwards no lock remains, and the engine works.
#include <new>
#include <set>
#include <string>

#include "tests/engine/test_databases.h"
#include "tests/faults/faults.h"
#include "tests/faults/told.h"

namespace kxrestore::faults {
namespace {

using namespace engine;  // NOLINT: the tests are about the engine
using Ids = std::set<int>;

class EngineFaults : public engine::testing::SqliteTest, public ::testing::WithParamInterface<Failing> {
 protected:
  template <class Step>
  static bool Succeeds(Step step) {
    try {
      step();
      return true;
    } catch (const Error&) {
    } catch (const std::bad_alloc&) {
    }
    return false;
  }

  // Runs a step that marks a row, and records whether it failed.
  template <class Step>
  void Mark(int id, Step step) {
    const bool done = Succeeds(step);
    const Pause pause;
    (done ? m_waiting : m_failed).insert(id);
  }
  template <class Step>
  void Commit(Step step) {
    const bool done = Succeeds(step);
    const Pause pause;
    if (done) m_safe.insert(m_waiting.begin(), m_waiting.end());
    m_waiting.clear();
  }

  // The statements of a dialog. After a failed step the next one is tried.
  void Work(Workspace& workspace) {
    Succeeds([&] { workspace.BeginAction(); });
    std::unique_ptr<Database> database;
    Succeeds([&] { database = workspace.OpenDatabase(m_test->Request()); });
    if (database) {
      std::unique_ptr<Recordset> rows;
      Succeeds([&] { rows = database->OpenRecordset("FullCatalog", RecordsetType::kSnapshot); });
      Mark(1, [&] { testing::Mark(*database, 1); });
      Succeeds([&] {
        for (; rows && !rows->Eof(); rows->MoveNext()) rows->Fields("OrigName").Text();
      });
      Commit([&] { workspace.Flush(); });
      Mark(2, [&] {
        const auto row =
            database->OpenRecordset("SELECT Restore FROM Catalog WHERE ID = 2", RecordsetType::kDynaset);
        testing::Change(*row, "Restore", true);
      });
      Succeeds([&] { database->DeleteQueryDef("FullCatalog"); });
      Succeeds([&] { database->CreateQueryDef("Mine", "SELECT ID FROM Catalog WHERE Status = 2;"); });
      Mark(3, [&] { testing::Mark(*database, 3); });
      Succeeds([&] { database->QueryText("Mine"); });
      Succeeds([&] {
        database->BeginTrans();
        database->Execute("DELETE FROM SetNames", kFailOnError);
        database->Rollback();
      });
    }
    database.reset();
    Commit([&] { workspace.EndAction(); });
  }

  long Try(Failing failing, long at, bool forever) {
    m_test->Run(
        "UPDATE Catalog SET Restore = 0; DROP VIEW IF EXISTS Mine; DROP VIEW IF EXISTS FullCatalog; CREATE "
        "VIEW FullCatalog AS SELECT * FROM Catalog");
    m_safe.clear();
    m_waiting.clear();
    m_failed.clear();
    m_workspace = testing::MakeImpatientWorkspace();
    Arm(failing, at, forever);
    Work(*m_workspace);
    const long calls = Disarm();
    if (at == 0) {
      EXPECT_GT(calls, 20);
      return calls;
    }
    const auto isMarked = [&](int id) {
      return m_test->Ask("SELECT Restore FROM Catalog WHERE ID = " + std::to_string(id)) == "1";
    };
    std::string wrong;
    for (const int id : m_safe) {
      if (!isMarked(id)) wrong += " lost after its commit: " + std::to_string(id);
    }
    for (const int id : m_failed) {
      if (isMarked(id)) wrong += " marked by a failed statement: " + std::to_string(id);
    }
    if (m_test->Ask("SELECT count(*) FROM SetNames") != "3") wrong += " the transaction was not rolled back";
    if (m_test->Ask("PRAGMA integrity_check") != "ok") wrong += " the file is damaged";
    if (!Succeeds([&] { m_test->Run("BEGIN IMMEDIATE; COMMIT"); })) wrong += " the file is still locked";
    if (!Succeeds([&] { SqliteTest::Mark(7); })) wrong += " the next action fails";
    const std::string what = std::string("the engine alone, ") + NameOf(failing) +
                             (forever ? " fails from a call on" : " fails once");
    Tell(what, wrong.empty());
    EXPECT_EQ(wrong, "") << what << ", call " << at;
    return calls;
  }

  Ids m_safe, m_waiting, m_failed;
};

TEST_P(EngineFaults, AtOneCall) {
  Sweep(40, [this](long at, bool forever) { return Try(GetParam(), at, forever); });
}

INSTANTIATE_TEST_SUITE_P(Kinds, EngineFaults,
                         ::testing::Values(Failing::kMemory, Failing::kDatabaseMemory, Failing::kFiles));

}  // namespace
}  // namespace kxrestore::faults
