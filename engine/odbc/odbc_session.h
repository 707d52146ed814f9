// One connection to a server with its prepared statements, its open recordsets and its pending commit.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/database.h"
#include "engine/odbc/odbc_error.h"
#include "engine/odbc/odbc_plan.h"
#include "engine/odbc/odbc_schema.h"
#include "engine/odbc/patience.h"
#include "engine/odbc/server_facts.h"
#include "engine/plan_cache.h"
#include "engine/streamed_recordset.h"

namespace kxrestore::engine::odbc {

class Session {
 public:
  // `connect` begins with "ODBC;". `grouping`: updates may wait for a common commit. `texts`: of saved
  // queries that the same action has made over other connections; null for a connection that stands alone.
  // `waiting`: what to do while the server takes long; null for nothing.
  Session(std::string_view connect, bool grouping, std::shared_ptr<SavedTexts> texts,
          std::shared_ptr<const Waiting> waiting = nullptr);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  SQLHDBC Get() const { return m_connection.Get(); }
  const std::string& Connect() const { return m_connect; }
  const std::string& Place() const { return m_server; }  // for messages
  const ServerFacts& Facts() const { return m_facts; }
  const jet_sql::ServerDialect& Dialect() const { return *m_dialect; }
  Schema& Tables() { return m_schema; }
  bool IsLost() const { return m_lost; }  // the server is gone; a new session is needed

  using Use = StatementUse;
  // The plan for a statement, whose values are in Values() until the next call.
  std::shared_ptr<Plan> FindPlan(const Sql& sql, Use use, const ColumnNames& read = {});
  const std::vector<Value>& Values() const { return m_plans.Values(); }
  std::unique_ptr<OdbcStatement> Acquire(Plan& plan);
  static void Release(Plan& plan, std::unique_ptr<OdbcStatement> statement);
  void ForgetPlans();  // after a change of the schema

  // Whether the next result is fetched from the server piece by piece, which costs round trips but no memory,
  // where a driver would otherwise take all of it at once.
  void FetchPiecewise(bool piecewise);
  bool FetchesPiecewise() const { return m_piecewise; }
  // For a statement that is to be prepared by name; empty where that is not to be.
  std::string NameForPrepared();
  // Makes a call of the driver that may take long. The user may end one that works for `reading`, a statement
  // that reads outside of any transaction: error 3059.
  SQLRETURN Call(SQLHSTMT reading, const std::function<SQLRETURN()>& call);
  // The same for a call that is made over and over. Marks come by the thousand: to wait for each with
  // patience would cost more than the mark. `isQuick`: the call's, false at first; how it was last time.
  SQLRETURN CallAgain(SQLHSTMT reading, const std::function<SQLRETURN()>& call, bool& isQuick);
  void GiveTurn() { m_patience.GiveTurn(); }

  // Executes a reading statement. False when the tables are others than it was prepared for.
  bool RunRead(OdbcStatement& statement, const std::vector<Value>& values);
  // Executes a writing statement, in the group or at once; the number of rows changed.
  std::int64_t RunWrite(OdbcStatement& statement, const std::vector<Value>& values);
  // Runs statements that belong together and change the schema; all of them or none.
  void RunSchemaChange(const std::vector<std::string>& statements);
  // Rows of a short question to the server itself, as texts.
  std::vector<std::vector<std::string>> Ask(const std::string& sql, const std::vector<Value>& values = {});

  StatementHandle AllocateStatement();
  [[noreturn]] void Raise(SQLSMALLINT type, SQLHANDLE handle, std::string_view piece) const;

  StreamingList& Streaming() { return m_streaming; }

  // A transaction of a database's own, during which no group is committed; it goes on when the action ends.
  void BeginTransaction(const Database& owner);
  void CommitTransaction();
  void UndoTransaction();
  const Database* TransactionOwner() const { return m_transactionOwner; }

  void Idle();       // commits what has waited long enough
  void Flush();      // commits
  void EndGroups();  // commits for good
  // A group goes down with its connection.
  CommitCounts Commits() const {
    return {m_commits.committed, m_commits.lost + (m_lost && m_inGroup ? 1 : 0)};
  }

 private:
  using Clock = std::chrono::steady_clock;
  struct GroupedWrite {
    std::string sql;
    std::vector<Value> values;
  };

  void ReadFacts();
  bool HandsOutUtf8();
  std::string InfoText(SQLUSMALLINT kind) const;
  std::uint32_t InfoNumber(SQLUSMALLINT kind) const;
  [[noreturn]] void RaiseDiagnostics(const std::vector<Diagnostic>& diagnostics,
                                     std::string_view piece) const;
  void SetAutocommit(bool on);
  void EndTransaction(bool commit);
  void CommitGroup();
  void Replay(std::vector<GroupedWrite> writes);

  std::string m_connect, m_server, m_password;
  bool m_grouping;
  std::shared_ptr<SavedTexts> m_texts;
  Patience m_patience;
  Environment m_environment;
  Connection m_connection;
  bool m_connected = false, m_piecewise = false;
  int m_namesGiven = 0;
  mutable bool m_lost = false;
  ServerFacts m_facts;
  std::unique_ptr<jet_sql::ServerDialect> m_dialect;
  Schema m_schema;
  StreamingList m_streaming;
  PlanCache<Plan> m_plans;
  const Database* m_transactionOwner = nullptr;
  SavedTexts m_textsBefore;  // the transaction
  bool m_inGroup = false;
  std::vector<GroupedWrite> m_group;
  Clock::time_point m_due;
  CommitCounts m_commits;
};

}  // namespace kxrestore::engine::odbc
