// One connection to a catalog file with its prepared statements, its open recordsets and its pending commit.
#pragma once

#include <chrono>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "engine/database.h"
#include "engine/sqlite/planner.h"
#include "engine/streamed_recordset.h"

namespace kxrestore::engine::sqlite {

class Session {
 public:
  // `grouping`: updates are grouped into common commits. `exclusive` and `tables`: see Connection.
  Session(std::string file, bool exclusive, bool grouping, std::shared_ptr<Waiter> waiter,
          std::shared_ptr<ForeignTables> tables = nullptr);
  ~Session() = default;  // rolls back
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  const std::string& Place() const { return m_connection.File(); }
  const Connection& Link() const { return m_connection; }
  bool IsReadOnly() const { return m_connection.IsReadOnly(); }

  using Use = StatementUse;
  std::shared_ptr<Plan> FindPlan(const Sql& sql, Use use, const ColumnNames& read = {});

  // A statement of the plan, bound to these values. Pass it to Release afterwards.
  Statement Acquire(Plan& plan, const std::vector<Value>& values);
  static void Release(Plan& plan, Statement statement) noexcept;

  // Runs a writing statement: waits for locks, makes streaming recordsets buffer their rows, groups the
  // commit. A statement that fails or is stopped has changed nothing.
  struct Write {
    bool disturbs = true;  // dynasets must be protected as well
    bool bounded = false;  // see Connection::IsBounded
    bool schema = false;   // a saved query, not rows
  };
  void RunWrite(Statement& statement, Write kind, std::string_view piece);

  // Saved queries. Within a group, dropping a query is deferred until the difference could be observed; if
  // the same query is created again before that, nothing is written.
  void CreateView(std::string_view name, const std::string& createText);  // error 3012
  void DropView(std::string_view name);                                   // error 3265
  void Settle();                                                          // carries out a deferred drop
  bool IsDropped(std::string_view name) const;

  StreamingList& Streaming() { return m_streaming; }
  void ForgetPlans() { m_plans.Forget(); }  // after a change of the schema

  // An explicit transaction. No group is committed during it, and it outlasts the user action.
  void BeginTransaction(const Database& owner);
  void CommitTransaction();
  void UndoTransaction();
  const Database* TransactionOwner() const { return m_transactionOwner; }

  // Each raises, once, the failure of a group that could not be committed and was rolled back.
  void Idle();       // commits a group that is due, without waiting for locks
  void Flush();      // commits; waits for locks
  void EndGroups();  // commits and ends grouping
  const CommitCounts& Commits() const { return m_commits; }

 private:
  using Clock = std::chrono::steady_clock;

  void NeedTransaction() const;
  bool InTransaction() const { return m_connection.InTransaction(); }
  bool InGroup() const { return m_grouping && m_transactionOwner == nullptr; }
  Outcome Begin();
  Outcome TryCommit(bool waiting);
  void CommitIfDue();
  bool CommitGroup(bool waiting = true);
  void LoseGroup(std::exception_ptr why);
  void NoticeLostGroup();
  void RaiseLostGroup();
  void RollBack() noexcept;
  void NeedUndone();
  void SettleForCommit();
  void ChangeSchema(const std::string& sql);

  bool m_grouping;
  Connection m_connection;
  Statement m_begin, m_commit, m_rollback;
  StreamingList m_streaming;
  PlanCache<Plan> m_plans;
  std::optional<SchemaEntry> m_dropped;
  const Database* m_transactionOwner = nullptr;
  bool m_groupHolds = false;  // contains updates of successful statements
  bool m_mustUndo = false;    // the rollback has failed
  std::exception_ptr m_groupLost;
  CommitCounts m_commits;
  Clock::time_point m_due, m_deadline, m_nextTry;
};

}  // namespace kxrestore::engine::sqlite
