#include "engine/odbc/odbc_session.h"

#include <algorithm>
#include <exception>
#include <new>
#include <utility>

#include "base/error.h"
#include "engine/error_numbers.h"

namespace kxrestore::engine::odbc {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kGroupTime(100);
// A statement on one row that takes much longer than usual has waited for a lock.
constexpr milliseconds kNoLockWait(20);
constexpr int kMaxTries = 6;
constexpr int kMaxNames = 200;

}  // namespace

Session::Session(std::string_view connect, std::shared_ptr<ActionState> action,
                 std::shared_ptr<const Waiting> waiting, const Waits& waits)
    : m_connect(connect),
      m_grouping(action != nullptr),
      m_action(action ? std::move(action) : std::make_shared<ActionState>(waits.locks)),
      m_connection(connect, waits, std::move(waiting)),
      m_schema(*this) {
  std::shared_ptr<SavedTexts>& texts = m_action->texts[m_connect];
  if (!texts) texts = std::make_shared<SavedTexts>();
  m_texts = texts;
  m_schema.SetTexts(*m_texts);
  ReadFacts();
}

Session::~Session() {
  m_plans.Forget();
}

// ---- calls

Outcome Session::Run(Connection::Call call, const std::shared_ptr<StatementData>& statement) {
  const bool inTransaction = m_inGroup || m_transactionOwner != nullptr;
  const bool stoppable = !inTransaction || m_facts.undoesStatementsAlone;
  return m_connection.Run(std::move(call), stoppable ? statement : nullptr);
}

void Session::RaiseFailure(const Outcome& outcome, std::string_view piece) const {
  throw ErrorOf(outcome.Diagnostics(), false, piece, m_connection.PasswordToHide());
}

// ---- statements

std::shared_ptr<Plan> Session::FindPlan(const Sql& sql, Use use, const ColumnNames& read) {
  return m_plans.Find(sql, use, read, [&] { return MakePlan(*this, sql, use, read); });
}

std::unique_ptr<OdbcStatement> Session::Acquire(Plan& plan) {
  if (plan.idle.empty()) return std::make_unique<OdbcStatement>(*this, plan.sql);
  auto statement = std::move(plan.idle.back());
  plan.idle.pop_back();
  return statement;
}

void Session::Release(Plan& plan, std::unique_ptr<OdbcStatement> statement) noexcept {
  statement->CloseCursor();
  try {
    PlanCache<Plan>::Keep(plan, std::move(statement));
  } catch (const std::bad_alloc&) {  // the statement is prepared again next time
  }
}

void Session::ForgetPlans() {
  m_plans.Forget();
  m_schema.Forget();
}

std::string Session::NameForPrepared() {
  if (!m_facts.preparesByName || m_namesGiven == kMaxNames) return {};
  return "kx_statement_" + std::to_string(++m_namesGiven);
}

bool Session::RunRead(OdbcStatement& statement, const std::vector<Value>& values, Outcome& failed) {
  if (m_facts.onlyOneActive) DetachStreaming();
  for (int tried = 1;; ++tried) {
    failed = statement.ExecuteReading(values);
    if (!failed.Failed()) return true;
    const Failure failure = FailureOf(failed.Diagnostics());
    if (failure == Failure::kStale) return false;
    if (m_inGroup || !MayRetry(failure, tried)) RaiseFailure(failed, statement.Sql().Text());
    PauseBeforeRetry(tried);
  }
}

std::int64_t Session::RunWrite(OdbcStatement& statement, const std::vector<Value>& values) {
  FetchPiecewise(false);
  DetachStreaming();
  GroupedWrite write{statement.Sql(), values};
  m_group.reserve(m_group.size() + 1);
  LimitLockWaits();
  BeginGroup();
  ExecuteWrite(statement, values);
  const std::int64_t rows = statement.ChangedRows();
  if (!m_inGroup) return rows;
  m_group.push_back(std::move(write));
  try {
    CommitIfDue();
  } catch (const std::bad_alloc&) {  // the commit is retried with the next statement
  }
  return rows;
}

void Session::ExecuteWrite(OdbcStatement& statement, const std::vector<Value>& values) {
  for (int tried = 1;; ++tried) {
    const auto start = Clock::now();
    const Outcome outcome = statement.Execute(values);
    if (!outcome.Failed()) {
      if (statement.ChangedRows() <= 1) SpendLockWait(start, Failure::kStatement);
      return;
    }
    const Failure failure = FailureOf(outcome.Diagnostics());
    if (failure == Failure::kConflict || failure == Failure::kLock) SpendLockWait(start, failure);
    if (!MayRetry(failure, tried)) RaiseFailure(outcome, statement.Sql().Text());
    // Two connections waited for each other's rows. The statements of this group are repeated and committed
    // one by one, so that no row stays locked while waiting for another.
    if (m_inGroup) Replay(std::exchange(m_group, {}));
    PauseBeforeRetry(tried);
    LimitLockWaits();
  }
}

void Session::RunSchemaChange(const std::vector<std::string>& statements) {
  Flush();
  DetachStreaming();
  FetchPiecewise(false);
  ForgetPlans();
  const bool own = m_transactionOwner == nullptr;
  for (int tried = 1;; ++tried) {
    LimitLockWaits();
    if (own) BeginManually();
    Outcome outcome;
    std::string_view failed;
    try {
      for (const std::string& sql : statements) {
        OdbcStatement statement(*this, sql);
        const auto start = Clock::now();
        outcome = statement.ExecuteDirect();
        SpendLockWait(start, FailureOf(outcome.Diagnostics()));
        if (outcome.Failed()) {
          failed = sql;
          break;
        }
      }
      if (own && failed.empty()) {
        outcome = m_connection.EndTransaction(true);
        if (outcome.Failed()) failed = statements.back();
      }
    } catch (...) {
      if (own) Undo();
      throw;
    }
    if (failed.empty()) return;
    if (own) Undo();
    if (!MayRetry(FailureOf(outcome.Diagnostics()), tried)) RaiseFailure(outcome, failed);
    PauseBeforeRetry(tried);
  }
}

std::vector<std::vector<std::string>> Session::Ask(const std::string& sql, const std::vector<Value>& values) {
  FetchPiecewise(false);
  OdbcStatement statement(*this, sql);
  const Outcome outcome = statement.ExecuteReading(values);
  if (outcome.Failed()) RaiseFailure(outcome, sql);
  std::vector<std::vector<std::string>> rows;
  while (statement.Next()) {
    std::vector<std::string>& row = rows.emplace_back();
    for (std::size_t i = 0; i < statement.Columns().size(); ++i) row.push_back(ToText(statement.Value(i)));
  }
  return rows;
}

void Session::ReadCatalog(OdbcStatement& statement, StatementData::CatalogFunction function) {
  FetchPiecewise(false);
  const Outcome outcome = statement.ExecuteCatalog(std::move(function));
  if (outcome.Failed()) RaiseFailure(outcome, statement.Sql().Text());
}

// ---- retrying

bool Session::MayRetry(Failure failure, int tried) const {
  return failure == Failure::kConflict && m_transactionOwner == nullptr && tried < kMaxTries &&
         m_action->lockTime.count() > 0;
}

// The pause grows, so that competing connections do not collide again immediately.
void Session::PauseBeforeRetry(int tried) {
  const auto start = Clock::now();
  m_connection.Pause(milliseconds(5 << tried));
  SpendLockWait(start, Failure::kConflict);
}

void Session::SpendLockWait(Clock::time_point start, Failure failure) {
  const auto time = Clock::now() - start;
  const bool hasWaited = failure == Failure::kConflict || failure == Failure::kLock;
  if (hasWaited || time > kNoLockWait + 3 * m_usualTime) {
    const auto spent = std::chrono::duration_cast<milliseconds>(time);
    m_action->lockTime = std::max(m_action->lockTime - spent, milliseconds(0));
  }
  m_usualTime = std::min(m_usualTime, time);
}

// ---- groups

// A new transaction, which ends with Connection::EndTransaction.
void Session::BeginManually() {
  const Outcome outcome = m_connection.SetAutocommit(false);
  if (outcome.Failed()) RaiseFailure(outcome, "BEGIN");
}

void Session::BeginGroup() {
  if (!m_grouping || m_inGroup || m_transactionOwner != nullptr) return;
  BeginManually();
  m_inGroup = true;
  m_due = Clock::now() + kGroupTime;
}

// Rolls the transaction back. If that fails, a later commit might include its changes, so the connection is
// abandoned.
void Session::Undo() noexcept {
  m_lockLimit = milliseconds(0);  // a limit set in the transaction is rolled back with it
  try {
    if (IsLost()) return;
    if (m_connection.EndTransaction(false).Failed()) m_connection.GiveUp();
  } catch (...) {
    m_connection.GiveUp();
  }
}

void Session::Replay(const std::vector<GroupedWrite>& writes) {
  m_inGroup = false;
  try {
    m_streaming.Detach();  // after a stop the recordset raises the error at the first missing row
    Undo();
    for (const GroupedWrite& write : writes) {
      OdbcStatement statement(*this, write.sql);
      ExecuteWrite(statement, write.values);
    }
    if (!writes.empty()) ++m_commits.committed;
  } catch (...) {
    if (!writes.empty()) {
      NoteLoss(error_number::kOdbcFailed,
               "ODBC - call failed: changes that the server had undone could not be written again.");
    }
    throw;
  }
}

void Session::Commit() {
  if (IsLost()) m_connection.RaiseLost();
  Outcome outcome;
  try {
    outcome = m_connection.EndTransaction(true);
  } catch (const Error& error) {
    if (m_connection.InTransaction()) Undo();
    if (error.Number() != error_number::kCanceled) throw;
    Raise(error_number::kOdbcFailed,
          "ODBC - call failed: '" + Place() + "' did not confirm a commit before it was stopped.");
  }
  if (!outcome.Failed()) return;
  Undo();
  RaiseFailure(outcome, "COMMIT");
}

CommitCounts Session::Commits() const {
  return {m_commits.committed, m_commits.lost + (IsLost() && !m_group.empty() ? 1 : 0)};
}

// Of two losses that are reported together, the later one provides the message.
void Session::NoteLoss(int number, std::string message) {
  ++m_commits.lost;
  m_lossNumber = number;
  m_lossMessage = std::move(message);
}

// Records a failure instead of throwing it. Throws what the callback throws, and std::bad_alloc before doing
// anything.
void Session::CommitGroup() {
  if (!m_inGroup) return;
  if (!IsLost()) m_streaming.Detach();  // a commit closes the cursors of open recordsets
  m_inGroup = false;
  const bool isEmpty = std::exchange(m_group, {}).empty();
  try {
    Commit();
    if (!isEmpty) ++m_commits.committed;
  } catch (const Error& error) {
    if (!isEmpty) NoteLoss(error.Number(), error.Description());
  } catch (const std::bad_alloc&) {
    if (m_connection.InTransaction()) Undo();
    if (!isEmpty) NoteLoss(kxrestore::error_number::kOutOfMemory, "Out of memory");
  } catch (...) {
    const bool isUndone = m_connection.InTransaction();
    if (isUndone) Undo();
    const bool isLost = isUndone || IsLost();
    if (!isEmpty && !isLost) ++m_commits.committed;
    if (!isEmpty && isLost) {
      NoteLoss(error_number::kOdbcFailed, "ODBC - call failed: a commit was interrupted.");
    }
    throw;
  }
}

void Session::CommitIfDue() {
  if (m_inGroup && (IsLost() || Clock::now() >= m_due)) CommitGroup();
}

void Session::RaiseLoss() {
  if (m_lossNumber != 0) Raise(std::exchange(m_lossNumber, 0), std::exchange(m_lossMessage, {}));
}

void Session::Idle() {
  CommitIfDue();
  RaiseLoss();
}

void Session::Flush() {
  CommitGroup();
  RaiseLoss();
}

void Session::EndGroups() {
  m_grouping = false;
  Flush();
}

void Session::DetachStreaming() {
  if (!m_streaming.Detach()) RaiseCanceled();
}

// ---- transactions

void Session::BeginTransaction(const Database& owner) {
  Flush();
  BeginManually();
  m_transactionOwner = &owner;
  m_textsBefore = *m_texts;
}

void Session::CommitTransaction() {
  DetachStreaming();
  const Outcome outcome = m_connection.EndTransaction(true);
  if (outcome.Failed()) RaiseFailure(outcome, "COMMIT");
  m_transactionOwner = nullptr;
}

void Session::UndoTransaction() {
  m_transactionOwner = nullptr;
  m_lockLimit = milliseconds(0);
  *m_texts = std::move(m_textsBefore);
  ForgetPlans();  // the rollback may have restored saved queries
  Outcome outcome;
  try {
    outcome = m_connection.EndTransaction(false);
  } catch (...) {
    m_connection.GiveUp();
    throw;
  }
  if (!outcome.Failed()) return;
  m_connection.GiveUp();
  RaiseFailure(outcome, "ROLLBACK");
}

}  // namespace kxrestore::engine::odbc
