#include "engine/sqlite/session.h"

#include <utility>

#include "base/text.h"
#include "engine/error_numbers.h"
#include "engine/jet_sql/printing/dialect.h"

namespace kxrestore::engine::sqlite {
namespace {

constexpr auto kGroupTime = std::chrono::milliseconds(100);
constexpr auto kRetryTime = std::chrono::milliseconds(20);

}  // namespace

Session::Session(std::string file, bool exclusive, bool grouping, std::shared_ptr<Waiter> waiter,
                 std::shared_ptr<ForeignTables> tables)
    : m_grouping(grouping), m_connection(std::move(file), exclusive, std::move(waiter), std::move(tables)) {
  // Prepared in advance, so that ending a transaction needs no memory.
  m_begin = m_connection.Prepare("BEGIN IMMEDIATE", Doing::kOpening);
  m_commit = m_connection.Prepare("COMMIT", Doing::kOpening);
  m_rollback = m_connection.Prepare("ROLLBACK", Doing::kOpening);
}

// ---- statements

std::shared_ptr<Plan> Session::FindPlan(const Sql& sql, Use use, const ColumnNames& read) {
  return m_plans.Find(sql, use, read, [&] { return MakePlan(m_connection, sql, use, read); });
}

Statement Session::Acquire(Plan& plan, const std::vector<Value>& values) {
  Statement statement;
  if (plan.idle.empty()) {
    statement = m_connection.Prepare(plan.sql.Text());
  } else {
    statement = std::move(plan.idle.back());
    plan.idle.pop_back();
  }
  statement.Bind(values);
  return statement;
}

void Session::Release(Plan& plan, Statement statement) noexcept {
  statement.Reset();
  PlanCache<Plan>::Keep(plan, std::move(statement));
}

void Session::RunWrite(Statement& statement, Write kind, std::string_view piece) {
  NeedUndone();
  if (!m_streaming.Detach(kind.disturbs)) m_connection.Raise(SQLITE_INTERRUPT, Doing::kWriting);
  NeedTransaction();
  // Stopping a running statement rolls back the whole transaction, so a statement that may be stopped gets
  // one of its own, after a commit of the updates before it.
  if (InGroup() && !kind.bounded && m_groupHolds && !CommitGroup()) {
    std::rethrow_exception(m_groupLost);
  }
  if (!kind.schema) m_connection.PrepareForWriting();
  const bool inTransaction = InTransaction();
  for (bool retried = false;; retried = true) {
    Outcome outcome = m_grouping && !InTransaction() ? Begin() : Outcome(SQLITE_OK);
    if (outcome.IsOk()) outcome = statement.Step(kind.bounded ? Stop::kWaits : Stop::kWork);
    const ResetGuard guard(statement);
    if (outcome.IsDone() || outcome.IsRow()) break;
    // This session's own read transaction may block the other process, or be older than what that has
    // written: end it, once.
    if (outcome.IsBusy() && !m_streaming.IsEmpty() && !retried) {
      if (m_streaming.Detach()) continue;
      outcome = Outcome(SQLITE_INTERRUPT);
    }
    // A full disk and similar errors roll back the whole group.
    const bool undone = inTransaction && !InTransaction();
    try {
      m_connection.Raise(outcome.Code(), Doing::kWriting, piece);
    } catch (...) {
      if (undone && m_groupHolds && InGroup()) LoseGroup(std::current_exception());
      throw;
    }
  }
  if (!InGroup()) return;
  m_groupHolds = true;
  if (kind.bounded) {
    CommitIfDue();
  } else {
    CommitGroup();
  }
}

// ---- saved queries

void Session::ChangeSchema(const std::string& sql) {
  ForgetPlans();
  Statement statement = m_connection.Prepare(sql, Doing::kWriting);
  RunWrite(statement, {.bounded = true, .schema = true}, sql);
  ForgetPlans();
}

bool Session::IsDropped(std::string_view name) const {
  return m_dropped && EqualIgnoringCase(m_dropped->name, name);
}

void Session::CreateView(std::string_view name, const std::string& createText) {
  if (IsDropped(name) && m_dropped->sql == createText) {
    m_dropped.reset();
    return;
  }
  Settle();
  if (!m_connection.FindEntry(name).type.empty()) {
    Raise(error_number::kObjectExists, "Object '" + std::string(name) + "' already exists.");
  }
  ChangeSchema(createText);
}

void Session::DropView(std::string_view name) {
  Settle();
  // Within a transaction, so that no other connection changes the view before it is created again.
  if (m_grouping && !InTransaction()) m_connection.Check(Begin(), Doing::kWriting);
  SchemaEntry entry = m_connection.FindEntry(name);
  if (entry.type != "view") RaiseItemNotFound(name);
  m_dropped = std::move(entry);
  if (!InTransaction()) Settle();
}

void Session::Settle() {
  if (!m_dropped) return;
  const SchemaEntry dropped = *std::exchange(m_dropped, std::nullopt);
  ChangeSchema("DROP VIEW " + jet_sql::SqliteDialect(true).Identifier(dropped.name));
}

// ---- transactions

void Session::BeginTransaction(const Database& owner) {
  SettleForCommit();
  CommitGroup();
  if (m_groupLost) std::rethrow_exception(m_groupLost);  // kept, to be raised for the group as well
  NeedUndone();
  Outcome outcome = Begin();
  if (outcome.IsBusy() && !m_streaming.IsEmpty()) {
    if (!m_streaming.Detach()) m_connection.Raise(SQLITE_INTERRUPT, Doing::kWriting);
    outcome = Begin();
  }
  m_connection.Check(outcome, Doing::kWriting);
  m_transactionOwner = &owner;
}

// A full disk and similar errors roll back the transaction. What follows must not be written without the
// rest.
void Session::NeedTransaction() const {
  if (!m_transactionOwner || InTransaction()) return;
  engine::Raise(error_number::kNoTransaction, "An error has undone the transaction in '" + Place() + "'.");
}

void Session::CommitTransaction() {
  Settle();
  NeedTransaction();
  const Outcome outcome = TryCommit(true);
  m_connection.Check(outcome, Doing::kWriting);
  m_transactionOwner = nullptr;
}

void Session::UndoTransaction() {
  std::exception_ptr failure;
  try {
    m_streaming.Detach(false);  // snapshots keep their rows
  } catch (...) {
    failure = std::current_exception();
  }
  m_transactionOwner = nullptr;
  RollBack();
  ForgetPlans();  // the rollback may have restored saved queries
  if (failure) std::rethrow_exception(failure);
}

// ---- commits in groups

Outcome Session::Begin() {
  NoticeLostGroup();
  const Outcome outcome = m_begin.Step(Stop::kWaits);
  m_begin.Reset();
  if (!outcome.IsDone()) return outcome;
  m_groupHolds = false;
  m_due = m_nextTry = Clock::now() + kGroupTime;
  m_deadline = m_due + m_connection.Waits().LockTimeout();
  return Outcome(SQLITE_OK);
}

Outcome Session::TryCommit(bool waiting) {
  NoticeLostGroup();
  if (m_mustUndo) RollBack();
  if (m_mustUndo || !InTransaction()) return Outcome(SQLITE_OK);
  const Outcome outcome = m_commit.Step(waiting ? Stop::kCommits : Stop::kAtOnce);
  m_commit.Reset();
  if (!outcome.IsDone()) return outcome;
  m_groupHolds = false;
  if (m_transactionOwner == nullptr) ++m_commits.committed;
  return Outcome(SQLITE_OK);
}

void Session::RollBack() noexcept {
  m_dropped.reset();
  m_groupHolds = false;
  if (InTransaction()) {
    [[maybe_unused]] const int code = sqlite3_step(m_rollback.Get());  // see InTransaction
    m_rollback.Reset();
  }
  m_mustUndo = InTransaction();
}

// Without memory even a rollback may fail. Until it succeeds, nothing may be added to the transaction.
void Session::NeedUndone() {
  if (m_mustUndo) RollBack();
  if (m_mustUndo) m_connection.Raise(SQLITE_NOMEM, Doing::kWriting);
}

// The group's updates are rolled back; the next Idle or Flush raises the cause.
void Session::LoseGroup(std::exception_ptr why) {
  ++m_commits.lost;
  RollBack();
  ForgetPlans();  // the rollback may have restored saved queries
  if (!m_groupLost) m_groupLost = std::move(why);
}

// An out-of-memory or I/O error can roll back the group, even in a statement that only reads.
void Session::NoticeLostGroup() {
  if (!m_groupHolds || InTransaction()) return;
  try {
    engine::Raise(error_number::kDiskError,
                  "Disk or memory error on '" + Place() + "': its last changes were undone.");
  } catch (...) {
    LoseGroup(std::current_exception());
  }
}

void Session::RaiseLostGroup() {
  NoticeLostGroup();
  if (m_groupLost) std::rethrow_exception(std::exchange(m_groupLost, nullptr));
}

// Returns whether it is committed. Without `waiting`, a commit that other connections block is tried again
// later, while marking continues; the group is lost only if they do not release the file in time.
bool Session::CommitGroup(bool waiting) {
  const Outcome outcome = TryCommit(waiting);
  if (outcome.IsOk()) return true;
  const auto now = Clock::now();
  if (!waiting && outcome.IsBusy() && now < m_deadline) {
    m_nextTry = now + kRetryTime;
    return false;
  }
  try {
    m_connection.Raise(outcome.Code(), Doing::kWriting);
  } catch (...) {
    LoseGroup(std::current_exception());
  }
  return false;
}

// A saved query that cannot be dropped is reported as well, but does not prevent the commit.
void Session::SettleForCommit() {
  try {
    Settle();
  } catch (...) {
    if (!m_groupLost) m_groupLost = std::current_exception();
  }
}

void Session::CommitIfDue() {
  if (InTransaction() && Clock::now() >= m_nextTry) CommitGroup(false);
}

void Session::Idle() {
  if (InGroup() && InTransaction()) {  // called for every row: without a transaction it must cost nothing
    if (Clock::now() >= m_due) SettleForCommit();
    CommitIfDue();
  }
  RaiseLostGroup();
}

void Session::Flush() {
  if (m_transactionOwner == nullptr) {
    SettleForCommit();
    CommitGroup();
  }
  RaiseLostGroup();
}

void Session::EndGroups() {
  m_grouping = false;
  Flush();
}

}  // namespace kxrestore::engine::sqlite
