// One connection to a catalog file with its prepared statements, its open recordsets and its pending commit.
#pragma once

#include <chrono>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "engine/database.h"
#include "engine/plan_cache.h"
#include "engine/sqlite/connection.h"
#include "engine/sqlite/plan.h"
#include "engine/streamed_recordset.h"

namespace kxrestore::engine::sqlite {

// A saved query or a table as the schema holds it; all empty when there is none.
struct SchemaEntry {
  std::string type, name, sql;
};

class Session {
 public:
  // `grouping`: updates may wait for a common commit. `exclusive`: nobody else may use the file. `tables`:
  // see Connection.
  Session(std::string file, bool exclusive, bool grouping, std::shared_ptr<Waiter> waiter,
          std::shared_ptr<ForeignTables> tables = nullptr);
  ~Session() = default;  // what nobody has committed is undone
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  const std::string& Place() const { return m_connection.File(); }
  const Connection& Link() const { return m_connection; }
  bool IsReadOnly() const { return m_connection.IsReadOnly(); }

  using Use = StatementUse;
  std::shared_ptr<Plan> FindPlan(const Sql& sql, Use use, const ColumnNames& read = {});

  // A statement of the plan with the values of the last FindPlan bound; give it back when done.
  Statement Acquire(Plan& plan);
  static void Release(Plan& plan, Statement statement) noexcept;

  // Runs a writing statement to its end: waits for others, keeps streaming recordsets what they are, groups
  // the commit. A statement that fails or is stopped has changed nothing.
  struct Write {
    bool disturbs = true;  // dynasets must be protected as well
    bool bounded = false;  // see Connection::IsBounded
    bool schema = false;   // a saved query, not rows
  };
  void RunWrite(Statement& statement, Write kind, std::string_view piece);

  // Saved queries. In a group a query that is to go stays until somebody could see the difference; when the
  // same one is made before, nothing is written at all.
  SchemaEntry FindEntry(std::string_view name);
  void CreateView(std::string_view name, const std::string& createText);  // error 3012
  void DropView(std::string_view name);                                   // error 3265
  void Settle();  // before anything else that could see the difference
  bool IsDropped(std::string_view name) const;

  StreamingList& Streaming() { return m_streaming; }
  void ForgetPlans() { m_plans.Forget(); }  // somebody has changed the schema

  // A transaction of a database's own, during which no group is committed; it goes on when the action ends.
  void BeginTransaction(const Database& owner);
  void CommitTransaction();
  void UndoTransaction();
  const Database* TransactionOwner() const { return m_transactionOwner; }

  // Each raises, once, what has become of a group that could not be committed; its updates are undone then.
  void Idle();       // commits what has waited long enough, without waiting for anybody
  void Flush();      // commits; waits for others
  void EndGroups();  // commits for good
  const CommitCounts& Commits() const { return m_commits; }

 private:
  using Clock = std::chrono::steady_clock;

  void NeedTransaction() const;
  bool InTransaction() const { return m_connection.InTransaction(); }
  bool InGroup() const { return m_grouping && m_transactionOwner == nullptr; }
  void BeginGroup();
  Outcome Begin();
  Outcome TryCommit(bool waiting);
  void CommitIfDue();
  bool CommitGroup();
  void LoseGroup(std::exception_ptr why);
  void TellLostGroup();
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
  bool m_groupHolds = false;  // updates of statements that have ended well
  bool m_mustUndo = false;    // the rollback has failed
  std::exception_ptr m_groupLost;
  CommitCounts m_commits;
  Clock::time_point m_due, m_deadline, m_nextTry;
};

}  // namespace kxrestore::engine::sqlite
