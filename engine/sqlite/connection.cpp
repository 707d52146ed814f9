#include "engine/sqlite/connection.h"

#include <utility>

#include "base/text.h"
#include "engine/sqlite/functions.h"
#include "engine/sqlite/turn_vfs.h"

namespace kxrestore::engine::sqlite {
namespace {

constexpr int kStepsBetweenTurns = 4000;  // of SQLite's virtual machine, about 0.2 ms
constexpr int kMaxValue = 100'000'000;    // bytes; a malicious view could produce ten times as much

}  // namespace

void Connection::Closer::operator()(sqlite3* connection) const noexcept {
  // The last connection to a file with a write-ahead log copies the log into the file.
  waiter->Enter(Stop::kNothing);
  sqlite3_close_v2(connection);
  waiter->LeaveQuietly();
}

Connection::Connection(std::string file, bool exclusive, std::shared_ptr<Waiter> waiter,
                       std::shared_ptr<ForeignTables> tables)
    : m_file(std::move(file)), m_waiter(std::move(waiter)), m_tables(std::move(tables)) {
  int registered = SQLITE_OK;
  const char* const fileAccess = RegisterTurnVfs(registered);
  Check(Outcome(registered), Doing::kOpening);

  sqlite3* connection = nullptr;
  m_waiter->Enter(Stop::kWork);
  const int code = sqlite3_open_v2(m_tables ? ":memory:" : m_file.c_str(), &connection,
                                   SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, fileAccess);
  m_connection = std::unique_ptr<sqlite3, Closer>(connection, Closer{m_waiter.get()});
  Check(m_waiter->Leave(code), Doing::kOpening);

  Check(Outcome(sqlite3_extended_result_codes(connection, 1)), Doing::kOpening);
  Check(Outcome(sqlite3_busy_handler(connection, Busy, m_waiter.get())), Doing::kOpening);
  sqlite3_progress_handler(connection, kStepsBetweenTurns, Progress, m_waiter.get());
  Check(Outcome(RegisterFunctions(connection)), Doing::kOpening);
  Secure();
  if (m_tables) {
    m_tables->Attach(connection);
    return;
  }
  m_readOnly = sqlite3_db_readonly(connection, "main") == 1;
  // A commit ends with the journal's removal, which must reach the disk as well.
  Execute("PRAGMA synchronous = EXTRA", Doing::kOpening);
  if (exclusive) {
    // The lock taken by the first statement is kept until the connection closes.
    for (const char* sql : {"PRAGMA locking_mode = EXCLUSIVE", "BEGIN EXCLUSIVE", "COMMIT"}) {
      Execute(sql, Doing::kOpening);
    }
  }
  // Preparing reads the first page and the schema, so that a damaged or locked file is reported now.
  Prepare("SELECT 1 FROM sqlite_schema", Doing::kOpening);
}

void Connection::Secure() {
  sqlite3* const connection = Get();
  const struct {
    int option, value;
  } settings[] = {{SQLITE_DBCONFIG_DEFENSIVE, 1},
                  {SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0},
                  {SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0},
                  {SQLITE_DBCONFIG_ENABLE_FTS3_TOKENIZER, 0}};
  for (const auto& setting : settings) {
    Check(Outcome(sqlite3_db_config(connection, setting.option, setting.value, nullptr)), Doing::kOpening);
  }
  sqlite3_limit(connection, SQLITE_LIMIT_ATTACHED, 0);
  sqlite3_limit(connection, SQLITE_LIMIT_LENGTH, kMaxValue);
  Check(Outcome(sqlite3_set_authorizer(connection, Authorize, this)), Doing::kOpening);
  Execute("PRAGMA cell_size_check = ON", Doing::kOpening);
}

void Connection::PrepareForWriting() {
  if (m_preparedForWriting) return;
  Execute("PRAGMA cache_size = -32768", Doing::kWriting);  // KiB
  m_preparedForWriting = true;
}

Statement Connection::Prepare(std::string_view sql, Doing doing) const {
  m_refusedTrigger.clear();
  sqlite3_stmt* statement = nullptr;
  m_waiter->Enter(Stop::kWork);
  const int code = sqlite3_prepare_v3(Get(), sql.data(), static_cast<int>(sql.size()),
                                      SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
  Statement prepared(*this, statement);
  Check(m_waiter->Leave(code), doing, sql);
  return prepared;
}

void Connection::Execute(const char* sql, Doing doing) {
  m_waiter->Enter(Stop::kWork);
  Check(m_waiter->Leave(sqlite3_exec(Get(), sql, nullptr, nullptr, nullptr)), doing, sql);
}

SchemaEntry Connection::FindEntry(std::string_view name) const {
  Statement find = Prepare(
      "SELECT type, name, sql FROM sqlite_schema WHERE type IN ('table', 'view') AND name = ?1 COLLATE "
      "NOCASE");
  find.Bind(1, name);
  if (!find.Next(name)) return {};
  return {find.Text(0), find.Text(1), find.Text(2)};
}

std::optional<Connection::Column> Connection::FindColumn(const std::string& table, const std::string& column,
                                                         bool tablesOnly) const {
  const char *type = nullptr, *collation = nullptr;
  int inKey = 0;
  m_waiter->Enter(Stop::kWork);
  const Outcome outcome = m_waiter->Leave(
      sqlite3_table_column_metadata(Get(), tablesOnly ? "main" : nullptr, table.c_str(), column.c_str(),
                                    &type, &collation, nullptr, &inKey, nullptr));
  if (outcome.Code() == SQLITE_ERROR) return std::nullopt;  // there is none
  Check(outcome, Doing::kReading, table);
  return Column{type == nullptr ? "" : type, collation == nullptr ? "" : collation, inKey != 0};
}

bool Connection::IsBounded(std::string_view sql) const {
  Statement explanation = Prepare("EXPLAIN " + std::string(sql), Doing::kWriting);
  bool oneRow = false;  // of a foreign table
  while (explanation.Next(sql)) {
    const std::string operation = explanation.Text(1);
    if (operation == "VFilter") oneRow = explanation.Text(5).starts_with(ForeignTables::kOneRow);
    if (operation == "VNext" && oneRow) continue;
    for (const char* loop : {"Program", "Next", "Prev", "SorterNext", "VNext", "RowSetRead", "Yield"}) {
      if (operation == loop) return false;
    }
  }
  return true;
}

// ---- callbacks from SQLite

// Called every kStepsBetweenTurns steps.
int Connection::Progress(void* waiter) noexcept {
  return static_cast<Waiter*>(waiter)->GoOn() ? 0 : 1;
}

// Called when another process holds a lock. `tried`: the number of earlier calls for this lock.
int Connection::Busy(void* waiter, int tried) noexcept {
  return static_cast<Waiter*>(waiter)->WaitForLock(tried == 0) ? 1 : 0;
}

// Called while a statement is prepared, for everything that it is going to do.
int Connection::Authorize(void* connection, int action, const char*, const char* second, const char*,
                          const char* trigger) noexcept {
  const auto& self = *static_cast<const Connection*>(connection);
  if (!self.m_waiter->GoOn()) return SQLITE_DENY;
  switch (action) {
    case SQLITE_ATTACH:
    case SQLITE_DETACH:
      return SQLITE_DENY;
    case SQLITE_FUNCTION:
      return second != nullptr && EqualIgnoringCase(second, "load_extension") ? SQLITE_DENY : SQLITE_OK;
    case SQLITE_INSERT:
    case SQLITE_UPDATE:
    case SQLITE_DELETE:
      if (trigger == nullptr) return SQLITE_OK;
      try {
        self.m_refusedTrigger = trigger;
      } catch (...) {  // the message then lacks the name
      }
      return SQLITE_DENY;
    default:
      return SQLITE_OK;
  }
}

}  // namespace kxrestore::engine::sqlite
