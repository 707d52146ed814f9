// A connection to a server with its prepared statements, its open recordsets and its pending commit.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/database.h"
#include "engine/odbc/connection.h"
#include "engine/odbc/odbc_error.h"
#include "engine/odbc/odbc_planner.h"
#include "engine/odbc/odbc_schema.h"
#include "engine/odbc/server_facts.h"
#include "engine/odbc/waits.h"
#include "engine/streamed_recordset.h"

namespace kxrestore::engine::odbc {

// Shared by the sessions of one user action.
struct ActionState {
  explicit ActionState(std::chrono::milliseconds time) : lockTime(time) {}
  std::chrono::milliseconds lockTime;                        // left for waiting for others' locks
  std::map<std::string, std::shared_ptr<SavedTexts>> texts;  // by connect string
};

// Every function that accesses the server raises the errors of Connection::Run, and the driver's, see
// ErrorOf.
class Session {
 public:
  // `connect` begins with "ODBC;". `action`: the user action that the session is kept for, in which updates
  // may wait for a common commit; null for a standalone session. `waiting`: callback while the server takes
  // long, or null.
  explicit Session(std::string_view connect, std::shared_ptr<ActionState> action = nullptr,
                   std::shared_ptr<const Waiting> waiting = nullptr, const Waits& waits = {});
  ~Session();  // rolls back what is not committed
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  const std::string& Connect() const { return m_connect; }
  const std::string& Place() const { return m_connection.Server(); }  // for messages
  Connection& Driver() { return m_connection; }
  const ServerFacts& Facts() const { return m_facts; }
  const jet_sql::Dialect& Dialect() const { return *m_dialect; }
  Schema& Tables() { return m_schema; }
  bool IsLost() const { return m_connection.IsLost(); }  // the server is gone; a new session is needed
  // Whether changes are uncommitted, or were lost and not yet reported.
  bool HasUnreported() const { return !m_group.empty() || m_lossNumber != 0; }

  using Use = StatementUse;
  // The plan for a statement.
  std::shared_ptr<Plan> FindPlan(const Sql& sql, Use use, const ColumnNames& read = {});
  std::unique_ptr<OdbcStatement> Acquire(Plan& plan);
  static void Release(Plan& plan, std::unique_ptr<OdbcStatement> statement) noexcept;
  void ForgetPlans();  // after a change of the schema

  // Whether the next result is fetched in pieces, which costs round trips but saves memory where the driver
  // would otherwise fetch all rows at once.
  void FetchPiecewise(bool piecewise);
  bool FetchesPiecewise() const { return m_piecewise; }
  // A new name for a prepared statement; empty where the server does not prepare by name.
  std::string NameForPrepared();

  // Makes a driver call, see Connection::Run. A stop cancels `statement` unless that would roll back more
  // than the statement.
  Outcome Run(Connection::Call call, const std::shared_ptr<StatementData>& statement);
  void GiveTurn() { m_connection.GiveTurn(); }
  [[noreturn]] void RaiseFailure(const Outcome& outcome, std::string_view piece) const;

  // Executes a reading statement. False when the tables have changed since it was prepared; `failed` then
  // holds the driver's error.
  bool RunRead(OdbcStatement& statement, const std::vector<Value>& values, Outcome& failed);
  // Executes a writing statement, in the group or with a commit of its own. Returns the number of rows
  // changed.
  std::int64_t RunWrite(OdbcStatement& statement, const std::vector<Value>& values);
  // Runs statements that change the schema, as one transaction.
  void RunSchemaChange(const std::vector<std::string>& statements);
  // Rows of a short query on the server itself, as texts.
  std::vector<std::vector<std::string>> Ask(const std::string& sql, const std::vector<Value>& values = {});
  // Calls one of the driver's catalog functions, whose rows the statement then has.
  void ReadCatalog(OdbcStatement& statement, StatementData::CatalogFunction function);

  StreamingList& Streaming() { return m_streaming; }

  // The transaction of a database. No group is committed during it, and it may outlast the action.
  void BeginTransaction(const Database& owner);
  void CommitTransaction();
  void UndoTransaction();
  const Database* TransactionOwner() const { return m_transactionOwner; }

  // Each raises, once, a failed commit and changes that were lost with the connection.
  void Idle();       // commits groups that are due
  void Flush();      // commits
  void EndGroups();  // commits and ends grouping
  CommitCounts Commits() const;

 private:
  using Clock = std::chrono::steady_clock;
  struct GroupedWrite {
    jet_sql::PrintedSql sql;
    std::vector<Value> values;
  };

  void ReadFacts();
  void ReadPostgresFacts(bool isPsqlodbc);
  bool ReturnsUtf8();
  void LimitLockWaits();
  void SpendLockWait(Clock::time_point start, Failure failure);
  void BeginManually();
  void Undo() noexcept;
  void BeginGroup();
  void Commit();
  void CommitGroup();
  void CommitIfDue();
  void NoteLoss(int number, std::string message);
  void RaiseLoss();
  void DetachStreaming();  // error 3059 when the user stops
  void ExecuteWrite(OdbcStatement& statement, const std::vector<Value>& values);
  void Replay(const std::vector<GroupedWrite>& writes);
  bool MayRetry(Failure failure, int tried) const;
  void PauseBeforeRetry(int tried);

  std::string m_connect;
  bool m_grouping;
  std::shared_ptr<ActionState> m_action;
  std::shared_ptr<SavedTexts> m_texts;
  Connection m_connection;
  bool m_piecewise = false;
  int m_namesGiven = 0;
  std::chrono::milliseconds m_lockLimit{0};  // as set on the server; 0: not set
  Clock::duration m_usualTime{};             // shortest execution time so far
  ServerFacts m_facts;
  std::unique_ptr<jet_sql::Dialect> m_dialect;
  Schema m_schema;
  StreamingList m_streaming;
  PlanCache<Plan> m_plans;
  const Database* m_transactionOwner = nullptr;
  SavedTexts m_textsBefore;  // at the start of the transaction
  bool m_inGroup = false;
  std::vector<GroupedWrite> m_group;
  Clock::time_point m_due;
  CommitCounts m_commits;
  int m_lossNumber = 0;  // of a lost group that is not yet reported; 0: none
  std::string m_lossMessage;
};

}  // namespace kxrestore::engine::odbc
