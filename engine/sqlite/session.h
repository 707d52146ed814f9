// One connection to a catalog file with its prepared statements, its open recordsets and its pending commit.
#pragma once

#include <chrono>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/database.h"
#include "engine/plan_cache.h"
#include "engine/sqlite/plan.h"
#include "engine/sqlite/sqlite_error.h"
#include "engine/streamed_recordset.h"

namespace kxrestore::engine::sqlite {

class Session {
 public:
  // `grouping`: updates may wait for a common commit. `exclusive`: nobody else may use the file. `patience`:
  // how long to wait for another process before that is an error. `waiting`: what to do while a statement
  // takes long.
  Session(std::string file, bool exclusive, bool grouping, std::chrono::milliseconds patience,
          std::shared_ptr<const Waiting> waiting);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  const std::string& Place() const { return m_file; }
  sqlite3* Connection() const { return m_connection.get(); }
  bool IsReadOnly() const { return m_readOnly; }

  using Use = StatementUse;
  std::shared_ptr<Plan> FindPlan(const Sql& sql, Use use, const ColumnNames& read = {});

  // A statement of the plan with the values of the last FindPlan bound; give it back when done.
  Statement Acquire(Plan& plan);
  static void Release(Plan& plan, Statement statement);

  // Lets a reading statement work for its next row; the user may end it. Returns SQLite's code.
  int StepReading(sqlite3_stmt* statement);

  // Runs a writing statement to its end: waits for others, keeps streaming recordsets what they are, groups
  // the commit. `disturbs`: dynasets must be protected as well.
  void RunWrite(sqlite3_stmt* statement, bool disturbs, std::string_view piece);
  // From here to the next commit of a group nobody else writes.
  void BeginGroup();
  void ForgetPlans() { m_plans.Forget(); }  // after a change of the schema

  Statement Prepare(std::string_view sql, Doing doing = Doing::kReading) const;
  [[noreturn]] void Raise(int code, Doing doing, std::string_view piece = {}) const;

  StreamingList& Streaming() { return m_streaming; }

  // A transaction of a database's own, during which no group is committed; it goes on when the action ends.
  void BeginTransaction(const Database& owner);
  void CommitTransaction();
  void UndoTransaction();
  const Database* TransactionOwner() const { return m_transactionOwner; }

  void Idle();       // commits what has waited long enough, without waiting for anybody
  void Flush();      // commits; waits, then raises
  void EndGroups();  // commits for good: what cannot be committed is rolled back and raised
  const CommitCounts& Commits() const { return m_commits; }

 private:
  using Clock = std::chrono::steady_clock;
  struct Closer {
    void operator()(sqlite3* connection) const { sqlite3_close_v2(connection); }
  };

  static int Progress(void* session) noexcept;
  static int Busy(void* session, int tried) noexcept;
  bool LookUp() noexcept;
  void NeedTransaction() const;
  bool InTransaction() const { return sqlite3_get_autocommit(m_connection.get()) == 0; }
  int Begin();
  int TryCommit(bool waiting);
  void CommitIfDue();
  void Commit();
  [[noreturn]] void RaiseLostGroup(int code);
  void RollBack();

  std::string m_file;
  bool m_grouping;
  std::chrono::milliseconds m_patience;
  bool m_readOnly = false;
  std::unique_ptr<sqlite3, Closer> m_connection;
  Statement m_begin, m_commit;
  StreamingList m_streaming;
  PlanCache<Plan> m_plans;
  const Database* m_transactionOwner = nullptr;
  std::shared_ptr<const Waiting> m_waiting;
  bool m_mayStop = false, m_inWaiting = false;
  std::exception_ptr m_waitingFailed;  // no exception may pass through SQLite
  Clock::time_point m_nextWaiting, m_busySince;
  bool m_waitsForOthers = true;
  CommitCounts m_commits;
  Clock::time_point m_due, m_deadline, m_nextTry;
};

}  // namespace kxrestore::engine::sqlite
