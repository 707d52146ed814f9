// The engine while memory, the database's memory or its files fail at every single call, once or from then
// on: no exception ends the program, a statement that failed has changed nothing, what a commit has returned
// for is in the file, nobody stays locked out, and everything works on.
#include <new>
#include <set>
#include <string>

#include "tests/engine/test_databases.h"
#include "tests/faults/faults.h"
#include "tests/faults/told.h"

namespace kxrestore::faults {
namespace {

using engine::Database;
using engine::RecordsetType;
using Ids = std::set<int>;

class EngineFaults : public testing::Test {
 protected:
  EngineFaults() { m_test->Run(engine::testing::CatalogSchema() + engine::testing::CatalogRows()); }

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

  void Mark(Database& database, int id) {
    const auto step = [&] {
      database.Execute("UPDATE Catalog SET Restore = True WHERE ID = " + std::to_string(id),
                       engine::kFailOnError);
    };
    Note(id, Succeeds(step));
  }
  void MarkRow(Database& database, int id) {
    const auto step = [&] {
      const auto row = database.OpenRecordset("SELECT Restore FROM Catalog WHERE ID = " + std::to_string(id),
                                              RecordsetType::kDynaset);
      row->Edit();
      row->Fields("Restore").Set(true);
      row->Update();
    };
    Note(id, Succeeds(step));
  }
  void Note(int id, bool done) {
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

  // What a dialog asks of the engine, each step for itself.
  void Work(engine::Workspace& workspace) {
    Succeeds([&] { workspace.BeginAction(); });
    std::unique_ptr<Database> database;
    Succeeds([&] { database = workspace.OpenDatabase(m_test->Request()); });
    if (database) {
      std::unique_ptr<engine::Recordset> rows;
      Succeeds([&] { rows = database->OpenRecordset("FullCatalog", RecordsetType::kSnapshot); });
      Mark(*database, 1);
      Succeeds([&] {
        for (; rows && !rows->Eof(); rows->MoveNext()) rows->Fields("OrigName").Text();
      });
      Commit([&] { workspace.Flush(); });
      MarkRow(*database, 2);
      Succeeds([&] { database->DeleteQueryDef("FullCatalog"); });
      Succeeds([&] { database->CreateQueryDef("Mine", "SELECT ID FROM Catalog WHERE Status = 2;"); });
      Mark(*database, 3);
      Succeeds([&] { database->QueryText("Mine"); });
      Succeeds([&] {
        database->BeginTrans();
        database->Execute("DELETE FROM SetNames", engine::kFailOnError);
        database->Rollback();
      });
    }
    database.reset();
    Commit([&] { workspace.EndAction(); });
  }

  long Try(Failing failing, long at, bool forever) {
    m_test->Run(
        "UPDATE Catalog SET Restore = 0; DROP VIEW IF EXISTS Mine; DROP VIEW IF EXISTS FullCatalog; CREATE "
        "VIEW "
        "FullCatalog AS SELECT * FROM Catalog");
    m_safe.clear();
    m_waiting.clear();
    m_failed.clear();
    const auto workspace = engine::testing::MakeImpatientWorkspace();
    Arm(failing, at, forever);
    Work(*workspace);
    const long calls = Disarm();
    if (at == 0) return calls;

    Ids marked;
    for (int id = 1; id <= 3; ++id) {
      if (m_test->Ask("SELECT Restore FROM Catalog WHERE ID = " + std::to_string(id)) == "1")
        marked.insert(id);
    }
    std::string wrong;
    for (const int id : m_safe) {
      if (!marked.contains(id)) wrong += " committed, but gone: " + std::to_string(id);
    }
    for (const int id : m_failed) {
      if (marked.contains(id)) wrong += " failed, but marked: " + std::to_string(id);
    }
    if (m_test->Ask("SELECT count(*) FROM SetNames") != "3") wrong += " the transaction was not undone";
    if (m_test->Ask("PRAGMA integrity_check") != "ok") wrong += " the file is damaged";
    if (!Succeeds([&] { m_test->Run("BEGIN IMMEDIATE; COMMIT"); })) wrong += " others are locked out";
    const auto again = [&] {
      workspace->OpenDatabase(m_test->Request())
          ->Execute("UPDATE Catalog SET Restore = True WHERE ID = 7", engine::kFailOnError);
    };
    if (!Succeeds(again)) wrong += " it does not work on";
    EXPECT_TRUE(wrong.empty()) << "call " << at << (forever ? " and on:" : ":") << wrong;
    Tell(std::string("the engine alone, ") +
             (failing == Failing::kMemory           ? "memory"
              : failing == Failing::kDatabaseMemory ? "the database's memory"
                                                    : "its files") +
             (forever ? " fails from a call on" : " fails once"),
         wrong.empty());
    return calls;
  }

  void Sweep(Failing failing, long sample) {
    for (const bool forever : {false, true}) {
      const long calls = Try(failing, 0, false);
      ASSERT_GT(calls, 20);
      const long distance = std::max(1L, calls / sample / static_cast<long>(Times()));
      for (long at = 1 + static_cast<long>(Seed()) % distance; at <= calls; at += distance) {
        Try(failing, at, forever);
        if (HasFailure()) return;
      }
    }
  }

  std::unique_ptr<engine::testing::TestDatabase> m_test = engine::testing::MakeSqliteFile();
  Ids m_safe, m_waiting, m_failed;
};

TEST_F(EngineFaults, Memory) {
  Sweep(Failing::kMemory, 40);
}
TEST_F(EngineFaults, MemoryOfTheDatabase) {
  Sweep(Failing::kDatabaseMemory, 40);
}
TEST_F(EngineFaults, Files) {
  Sweep(Failing::kFiles, 40);
}

}  // namespace
}  // namespace kxrestore::faults
