#include "engine/sqlite/session.h"

#include <algorithm>
#include <thread>
#include <utility>

#include "engine/error_numbers.h"
#include "engine/sqlite/functions.h"
#include "engine/sqlite/planner.h"

namespace kxrestore::engine::sqlite {
namespace {

constexpr auto kGroupTime = std::chrono::milliseconds(100);
constexpr auto kRetryTime = std::chrono::milliseconds(20);
constexpr auto kWaitingTime = std::chrono::milliseconds(20);
constexpr auto kBusyPause = std::chrono::milliseconds(10);
constexpr int kStepsBetweenLooks = 4000;  // of SQLite's machine: some 0.2 ms

}  // namespace

void Bind(sqlite3_stmt* statement, int index, const Value& value) {
  struct Visitor {
    sqlite3_stmt* statement;
    int index;
    void operator()(std::monostate) const { sqlite3_bind_null(statement, index); }
    void operator()(bool b) const { sqlite3_bind_int64(statement, index, b ? 1 : 0); }
    void operator()(std::int64_t integer) const { sqlite3_bind_int64(statement, index, integer); }
    void operator()(double real) const { sqlite3_bind_double(statement, index, real); }
    void operator()(const std::string& text) const {
      sqlite3_bind_text64(statement, index, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    }
    void operator()(const DateTime& date) const { (*this)(ToText(date)); }
  };
  std::visit(Visitor{statement, index}, value);
}

Session::Session(std::string file, bool exclusive, bool grouping, std::chrono::milliseconds patience,
                 std::shared_ptr<const Waiting> waiting)
    : m_file(std::move(file)), m_grouping(grouping), m_patience(patience), m_waiting(std::move(waiting)) {
  sqlite3* connection = nullptr;
  const int code =
      sqlite3_open_v2(m_file.c_str(), &connection, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
  m_connection.reset(connection);
  if (code != SQLITE_OK) Raise(code, Doing::kOpening);
  sqlite3_extended_result_codes(connection, 1);
  sqlite3_busy_handler(connection, Busy, this);
  if (const int registered = RegisterFunctions(connection); registered != SQLITE_OK) {
    Raise(registered, Doing::kOpening);
  }
  sqlite3_progress_handler(connection, kStepsBetweenLooks, Progress, this);
  m_readOnly = sqlite3_db_readonly(connection, "main") == 1;
  // A group of marks changes pages all over a catalog; they wait for the commit instead of being written
  // again and again. Unchanged pages get no more room by that: to touch so much memory would cost reading
  // more.
  sqlite3_exec(connection, "PRAGMA cache_spill = 8192", nullptr, nullptr, nullptr);
  if (exclusive) {
    // The lock taken by the first statement is kept until the connection closes.
    for (const char* sql : {"PRAGMA locking_mode = EXCLUSIVE", "BEGIN EXCLUSIVE", "COMMIT"}) {
      const int result = sqlite3_exec(connection, sql, nullptr, nullptr, nullptr);
      if (result != SQLITE_OK) Raise(result, Doing::kOpening);
    }
  }
  // Reads the first page and the schema, so that a damaged or locked file is told now.
  const Statement probe = Prepare("SELECT 1 FROM sqlite_schema", Doing::kOpening);
  const int result = sqlite3_step(probe.get());
  if (result != SQLITE_ROW && result != SQLITE_DONE) Raise(result, Doing::kOpening);
}

Session::~Session() {
  if (InTransaction()) TryCommit(true);
}

void Session::Raise(int code, Doing doing, std::string_view piece) const {
  RaiseSqlite(m_connection.get(), code, doing, m_file, piece);
}

Statement Session::Prepare(std::string_view sql, Doing doing) const {
  sqlite3_stmt* statement = nullptr;
  const int code = sqlite3_prepare_v3(m_connection.get(), sql.data(), static_cast<int>(sql.size()),
                                      SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
  if (code != SQLITE_OK) Raise(code, doing, sql);
  return Statement(statement);
}

std::shared_ptr<Plan> Session::FindPlan(const Sql& sql, Use use, const ColumnNames& read) {
  return m_plans.Find(sql, use, read, [&] { return MakePlan(*this, sql, use, read); });
}

Statement Session::Acquire(Plan& plan) {
  Statement statement;
  if (plan.idle.empty()) {
    statement = Prepare(plan.sql);
  } else {
    statement = std::move(plan.idle.back());
    plan.idle.pop_back();
  }
  int parameter = 0;
  for (const Value& value : m_plans.Values()) Bind(statement.get(), ++parameter, value);
  return statement;
}

void Session::Release(Plan& plan, Statement statement) {
  sqlite3_reset(statement.get());
  PlanCache<Plan>::Keep(plan, std::move(statement));
}

int Session::StepReading(sqlite3_stmt* statement) {
  m_mayStop = true;
  const int code = sqlite3_step(statement);
  m_mayStop = false;
  if (m_waitingFailed) std::rethrow_exception(std::exchange(m_waitingFailed, nullptr));
  return code;
}

// SQLite calls this every so many steps of its machine.
int Session::Progress(void* session) noexcept {
  auto& self = *static_cast<Session*>(session);
  return self.LookUp() || !self.m_mayStop ? 0 : 1;
}

// And this when another process has locked what it needs; `tried` counts from 0 for each time.
int Session::Busy(void* session, int tried) noexcept {
  auto& self = *static_cast<Session*>(session);
  if (!self.m_waitsForOthers) return 0;
  const auto now = Clock::now();
  if (tried == 0) self.m_busySince = now;
  if (now - self.m_busySince >= self.m_patience) return 0;
  std::this_thread::sleep_for(tried == 0 ? std::chrono::milliseconds(1) : kBusyPause);
  return self.LookUp() || !self.m_mayStop ? 1 : 0;
}

// Gives whoever waits for the statement a turn; whether it is to go on.
bool Session::LookUp() noexcept {
  if (!*m_waiting || m_inWaiting) return true;
  const auto now = Clock::now();
  if (now < m_nextWaiting) return true;
  bool goOn = true;
  m_inWaiting = true;
  try {
    goOn = (*m_waiting)();
  } catch (...) {
    m_waitingFailed = std::current_exception();
    goOn = false;
  }
  m_inWaiting = false;
  m_nextWaiting = Clock::now() + kWaitingTime;
  return goOn;
}

void Session::RunWrite(sqlite3_stmt* statement, bool disturbs, std::string_view piece) {
  m_streaming.Detach(disturbs);
  NeedTransaction();
  const bool wasInGroup = InTransaction() && m_transactionOwner == nullptr;
  for (bool retried = false;; retried = true) {
    int code = m_grouping && !InTransaction() ? Begin() : SQLITE_OK;
    if (code == SQLITE_OK) code = sqlite3_step(statement);
    if (code == SQLITE_DONE || code == SQLITE_ROW) {
      sqlite3_reset(statement);
      break;
    }
    // Our own open reading may be what another process waits for, or be older than what it wrote: let it go
    // once.
    if ((code & 0xFF) == SQLITE_BUSY && !m_streaming.IsEmpty() && !retried) {
      sqlite3_reset(statement);
      m_streaming.Detach();
      continue;
    }
    const ResetGuard guard(statement);
    if (wasInGroup && !InTransaction())
      ++m_commits.lost;  // a full disk and the like undo the whole transaction
    Raise(code, Doing::kWriting, piece);
  }
  if (m_grouping && !m_transactionOwner) CommitIfDue();
}

// ---- transactions

void Session::BeginTransaction(const Database& owner) {
  if (m_transactionOwner) {
    engine::Raise(error_number::kInvalidOperation,
                  "Invalid operation: a transaction has begun already in '" + m_file + "'.");
  }
  Flush();
  int code = Begin();
  if ((code & 0xFF) == SQLITE_BUSY && !m_streaming.IsEmpty()) {
    m_streaming.Detach();
    code = Begin();
  }
  if (code != SQLITE_OK) Raise(code, Doing::kWriting);
  m_transactionOwner = &owner;
}

// A full disk and the like undo the transaction beneath us: what follows must not be written without the
// rest.
void Session::NeedTransaction() const {
  if (!m_transactionOwner || InTransaction()) return;
  engine::Raise(error_number::kNoTransaction, "An error has undone the transaction in '" + m_file + "'.");
}

void Session::CommitTransaction() {
  NeedTransaction();
  Commit();
  m_transactionOwner = nullptr;
}

void Session::UndoTransaction() {
  const auto undo = [this] {
    m_transactionOwner = nullptr;
    RollBack();
    ForgetPlans();  // saved queries may be others again
  };
  try {
    m_streaming.Detach(false);  // what a snapshot shows stays
  } catch (...) {
    undo();
    throw;
  }
  undo();
}

// ---- commits in groups

void Session::BeginGroup() {
  if (!m_grouping || InTransaction()) return;
  if (const int code = Begin(); code != SQLITE_OK) Raise(code, Doing::kWriting);
}

int Session::Begin() {
  if (!m_begin) m_begin = Prepare("BEGIN IMMEDIATE", Doing::kWriting);
  const int code = sqlite3_step(m_begin.get());
  sqlite3_reset(m_begin.get());
  if (code != SQLITE_DONE) return code;
  m_due = m_nextTry = Clock::now() + kGroupTime;
  m_deadline = m_due + m_patience;
  return SQLITE_OK;
}

int Session::TryCommit(bool waiting) {
  if (!InTransaction()) return SQLITE_OK;
  if (!m_commit) m_commit = Prepare("COMMIT", Doing::kWriting);
  m_waitsForOthers = waiting;
  const int code = sqlite3_step(m_commit.get());
  sqlite3_reset(m_commit.get());
  m_waitsForOthers = true;
  if (code != SQLITE_DONE) return code;
  if (!m_transactionOwner) ++m_commits.committed;
  return SQLITE_OK;
}

void Session::RollBack() {
  if (InTransaction()) sqlite3_exec(m_connection.get(), "ROLLBACK", nullptr, nullptr, nullptr);
}

// A commit that others block is tried again and again while marking goes on; only when they do not let go in
// time is it an error.
void Session::CommitIfDue() {
  const auto now = Clock::now();
  if (now < m_nextTry || !InTransaction()) return;
  const int code = TryCommit(false);
  if (code == SQLITE_OK) return;
  if ((code & 0xFF) == SQLITE_BUSY && now < m_deadline) {
    m_nextTry = now + kRetryTime;
    return;
  }
  RaiseLostGroup(code);
}

void Session::Commit() {
  const int code = TryCommit(true);
  if (code != SQLITE_OK) RaiseLostGroup(code);
}

// The description is made first: a rollback forgets it.
void Session::RaiseLostGroup(int code) {
  try {
    Raise(code, Doing::kWriting);
  } catch (...) {
    if (!m_transactionOwner) ++m_commits.lost;
    RollBack();
    throw;
  }
}

void Session::Idle() {
  if (m_grouping && !m_transactionOwner) CommitIfDue();
}

void Session::Flush() {
  if (!m_transactionOwner) Commit();
}

void Session::EndGroups() {
  m_grouping = false;
  if (m_transactionOwner) return;
  Commit();
}

}  // namespace kxrestore::engine::sqlite
