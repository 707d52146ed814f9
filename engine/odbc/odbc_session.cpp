#include "engine/odbc/odbc_session.h"

#include <algorithm>
#include <array>
#include <thread>

#include "base/error.h"
#include "base/text.h"
#include "engine/error_numbers.h"
#include "engine/odbc/odbc_planner.h"

namespace kxrestore::engine::odbc {
namespace {

constexpr auto kGroupTime = std::chrono::milliseconds(100);
constexpr std::size_t kLoginTimeout = 20;  // seconds
constexpr auto kQuick = std::chrono::milliseconds(5);
constexpr int kMaxTries = 6;
constexpr int kMaxNames = 200;

// Options of the driver for PostgreSQL.
constexpr SQLINTEGER kPostgresDeclareFetch = 65539;
constexpr SQLINTEGER kPostgresServerSidePrepare = 65540;
constexpr SQLINTEGER kPostgresFetchRows = 65541;

constexpr std::size_t kPiecewiseRows = 8192;

SQLPOINTER AsPointer(std::size_t number) {
  return reinterpret_cast<SQLPOINTER>(number);
}

// The value of a keyword of a connect string, up to the next ";".
std::string ValueOf(std::string_view connect, std::string_view keyword) {
  for (std::size_t start = 0; start < connect.size();) {
    const std::size_t end = std::min(connect.find(';', start), connect.size());
    const std::string_view part = connect.substr(start, end - start);
    if (part.size() > keyword.size() && part[keyword.size()] == '=' &&
        EqualIgnoringCase(part.substr(0, keyword.size()), keyword)) {
      return std::string(part.substr(keyword.size() + 1));
    }
    start = end + 1;
  }
  return {};
}

// Others that lost against each other must not meet again at once.
void WaitBeforeTry(int number) {
  std::this_thread::sleep_for(std::chrono::milliseconds(5 << number));
}

}  // namespace

Session::Session(std::string_view connect, bool grouping, std::shared_ptr<SavedTexts> texts,
                 std::shared_ptr<const Waiting> waiting)
    : m_connect(connect),
      m_server(ValueOf(connect, "SERVER")),
      m_password(ValueOf(connect, "PWD")),
      m_grouping(grouping),
      m_texts(texts ? std::move(texts) : std::make_shared<SavedTexts>()),
      m_patience(std::move(waiting)),
      m_schema(*this, *m_texts) {
  if (m_server.empty()) m_server = ValueOf(connect, "DATABASE");
  if (!m_environment.Allocate(SQL_NULL_HANDLE) ||
      !SQL_SUCCEEDED(SQLSetEnvAttr(m_environment.Get(), SQL_ATTR_ODBC_VERSION, AsPointer(SQL_OV_ODBC3),
                                   SQL_IS_INTEGER)) ||
      !m_connection.Allocate(m_environment.Get())) {
    RaiseOdbc(ReadDiagnostics(SQL_HANDLE_ENV, m_environment.Get()), true, m_server, m_password);
  }
  SQLSetConnectAttrW(Get(), SQL_ATTR_LOGIN_TIMEOUT, AsPointer(kLoginTimeout), SQL_IS_UINTEGER);
  constexpr std::string_view kPrefix = "ODBC;";
  if (connect.size() >= kPrefix.size() && EqualIgnoringCase(connect.substr(0, kPrefix.size()), kPrefix)) {
    connect.remove_prefix(kPrefix.size());
  }
  WideText text(connect);
  const SQLRETURN result = Call(nullptr, [&] {
    return SQLDriverConnectW(Get(), nullptr, text.Data(), static_cast<SQLSMALLINT>(text.Size()), nullptr, 0,
                             nullptr, SQL_DRIVER_NOPROMPT);
  });
  if (!SQL_SUCCEEDED(result)) {
    RaiseOdbc(ReadDiagnostics(SQL_HANDLE_DBC, Get()), true, m_server, m_password);
  }
  m_connected = true;
  try {
    ReadFacts();
  } catch (...) {
    SQLDisconnect(Get());
    throw;
  }
}

Session::~Session() {
  m_plans.Forget();
  if (!m_connected) return;
  if (m_inGroup) SQLEndTran(SQL_HANDLE_DBC, Get(), SQL_COMMIT);
  if (m_transactionOwner != nullptr) SQLEndTran(SQL_HANDLE_DBC, Get(), SQL_ROLLBACK);
  SQLDisconnect(Get());
}

// ---- what the driver reports

std::string Session::InfoText(SQLUSMALLINT kind) const {
  std::array<char16_t, 256> text{};
  SQLSMALLINT size = 0;
  SQLGetInfoW(Get(), kind, text.data(), static_cast<SQLSMALLINT>(text.size() * sizeof(char16_t)), &size);
  return FromWide(text.data());
}

std::uint32_t Session::InfoNumber(SQLUSMALLINT kind) const {
  std::uint32_t number = 0;  // some kinds are 16 bits wide
  SQLGetInfoW(Get(), kind, &number, sizeof number, nullptr);
  return number;
}

// Whether bytes of a text come in UTF-8: where the process has another encoding, the driver turns them into
// that.
bool Session::HandsOutUtf8() {
  constexpr std::string_view kEveryKind = "a\xC3\xA4\xD0\xB6\xE2\x82\xAC\xE6\xBC\xA2\xF0\x9F\x98\x80";
  WideText sql("SELECT CAST('" + std::string(kEveryKind) + "' AS text)");
  std::array<char, 64> bytes{};
  SQLLEN size = 0;
  const StatementHandle statement = AllocateStatement();
  return SQL_SUCCEEDED(SQLExecDirectW(statement.Get(), sql.Data(), static_cast<SQLINTEGER>(sql.Size()))) &&
         SQL_SUCCEEDED(SQLFetch(statement.Get())) &&
         SQL_SUCCEEDED(SQLGetData(statement.Get(), 1, SQL_C_BINARY, bytes.data(), bytes.size(), &size)) &&
         size == static_cast<SQLLEN>(kEveryKind.size()) &&
         std::string_view(bytes.data(), kEveryKind.size()) == kEveryKind;
}

void Session::ReadFacts() {
  m_facts.dbms = InfoText(SQL_DBMS_NAME);
  m_facts.patternEscape = InfoText(SQL_SEARCH_PATTERN_ESCAPE);
  m_facts.foldsToLower = InfoNumber(SQL_IDENTIFIER_CASE) == SQL_IC_LOWER;
  m_facts.onlyOneActive = InfoNumber(SQL_MAX_CONCURRENT_ACTIVITIES) == 1;
  const std::uint32_t parts = InfoNumber(SQL_GETDATA_EXTENSIONS);
  constexpr std::uint32_t kNeeded = SQL_GD_BLOCK | SQL_GD_BOUND | SQL_GD_ANY_COLUMN | SQL_GD_ANY_ORDER;
  m_facts.readsPartsInBlocks = (parts & kNeeded) == kNeeded;
  if (m_facts.IsPostgres()) {
    const bool isPsqlodbc = InfoText(SQL_DRIVER_NAME).find("psqlodbc") != std::string::npos;
    if (isPsqlodbc) {
      m_facts.fetchesAllAtOnce = m_facts.preparesByName = m_facts.serverKeepsTime = true;
      // A prepared statement in a transaction is sent behind a savepoint of its own, a plain one together
      // with it.
      SQLSetConnectAttrW(Get(), kPostgresServerSidePrepare, AsPointer(0), SQL_IS_INTEGER);
      SQLSetConnectAttrW(Get(), kPostgresFetchRows, AsPointer(kPiecewiseRows), SQL_IS_INTEGER);
    }
    const auto rows = Ask(
        "SELECT current_schema(), datcollate, datctype, (SELECT count(*) FROM pg_catalog.pg_collation WHERE "
        "collname = 'und-x-icu'), current_setting('client_encoding'), current_setting('server_encoding'), "
        // Every listing is read to its end.
        "set_config('cursor_tuple_fraction', '1', false)" +
        // A driver that keeps the time itself tells the server each time before and after its own questions.
        (m_facts.serverKeepsTime
             ? ", set_config('statement_timeout', '" + std::to_string(kQueryTimeout) + "s', false)"
             : "") +
        " FROM pg_catalog.pg_database WHERE datname = current_database()");
    const std::vector<std::string>& row = rows.at(0);
    const bool hasCollation = row[3] != "0";
    const auto plain = [](const std::string& locale) { return locale == "C" || locale == "POSIX"; };
    m_facts.schema = row[0];
    if (plain(row[1]) || row[1].starts_with("C.")) {
      using Order = jet_sql::PostgresDialect::Order;
      m_facts.order = hasCollation       ? Order::kCollation
                      : row[5] == "UTF8" ? Order::kPlainLetters
                                         : Order::kOwn;
    }
    m_facts.foldsAsciiOnly = hasCollation && plain(row[2]);
    m_facts.textsAsBytes = isPsqlodbc && row[4] == "UTF8" && row[5] != "SQL_ASCII" && HandsOutUtf8();
  } else if (m_facts.IsSqlServer()) {
    const auto rows =
        Ask("SELECT SCHEMA_NAME(), CAST(DATABASEPROPERTYEX(DB_NAME(), 'Collation') AS nvarchar(128))");
    const std::string& collation = rows.at(0).at(1);
    m_facts.schema = rows.at(0).at(0);
    m_facts.mindsCase =
        collation.find("_CS_") != std::string::npos || collation.find("_BIN") != std::string::npos;
  }
  m_dialect = MakeDialect(m_facts);
}

// ---- errors

void Session::RaiseDiagnostics(const std::vector<Diagnostic>& diagnostics, std::string_view piece) const {
  if (FailureOf(diagnostics) == Failure::kConnection) m_lost = true;
  RaiseOdbc(diagnostics, false, piece, m_password);
}

void Session::Raise(SQLSMALLINT type, SQLHANDLE handle, std::string_view piece) const {
  RaiseDiagnostics(ReadDiagnostics(type, handle), piece);
}

StatementHandle Session::AllocateStatement() {
  FetchPiecewise(false);
  StatementHandle statement;
  if (!statement.Allocate(Get())) Raise(SQL_HANDLE_DBC, Get(), m_server);
  return statement;
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

void Session::Release(Plan& plan, std::unique_ptr<OdbcStatement> statement) {
  statement->CloseCursor();
  PlanCache<Plan>::Keep(plan, std::move(statement));
}

void Session::ForgetPlans() {
  m_plans.Forget();
  m_schema.Forget();
}

std::string Session::NameForPrepared() {
  if (!m_facts.preparesByName || m_piecewise || m_namesGiven == kMaxNames) return {};
  return "kx_statement_" + std::to_string(++m_namesGiven);
}

void Session::FetchPiecewise(bool piecewise) {
  if (!m_facts.fetchesAllAtOnce || m_piecewise == piecewise) return;
  m_piecewise = piecewise;
  SQLSetConnectAttrW(Get(), kPostgresDeclareFetch, AsPointer(piecewise ? 1 : 0), SQL_IS_INTEGER);
}

SQLRETURN Session::Call(SQLHSTMT reading, const std::function<SQLRETURN()>& call) {
  if (!m_patience.IsWanted()) return call();
  SQLRETURN result = SQL_ERROR;
  std::function<void()> cancel;
  // A transaction would be undone with its statement.
  if (reading != nullptr && !m_inGroup && m_transactionOwner == nullptr) {
    cancel = [reading] { SQLCancel(reading); };
  }
  const bool canceled = m_patience.Run([&] { result = call(); }, cancel);
  if (canceled && !SQL_SUCCEEDED(result)) {
    throw Error(error_number::kCanceled, "Operation canceled by user.", "Engine");
  }
  return result;
}

SQLRETURN Session::CallAgain(SQLHSTMT reading, const std::function<SQLRETURN()>& call, bool& isQuick) {
  if (!m_patience.IsWanted()) return call();
  const auto start = Clock::now();
  const SQLRETURN result = isQuick ? call() : Call(reading, call);
  isQuick = Clock::now() - start < kQuick;
  return result;
}

bool Session::RunRead(OdbcStatement& statement, const std::vector<Value>& values) {
  if (m_facts.onlyOneActive) m_streaming.Detach();
  for (int tried = 1;; ++tried) {
    if (statement.Execute(values, true)) return true;
    const auto diagnostics = ReadDiagnostics(SQL_HANDLE_STMT, statement.Get());
    const Failure failure = FailureOf(diagnostics);
    if (failure == Failure::kStale) return false;
    if (failure != Failure::kConflict || m_inGroup || m_transactionOwner || tried == kMaxTries) {
      RaiseDiagnostics(diagnostics, statement.Sql());
    }
    WaitBeforeTry(tried);
  }
}

std::int64_t Session::RunWrite(OdbcStatement& statement, const std::vector<Value>& values) {
  FetchPiecewise(false);
  m_streaming.Detach();
  const bool grouped = m_grouping && m_transactionOwner == nullptr;
  for (int tried = 1;; ++tried) {
    if (grouped && !m_inGroup && tried == 1) {
      SetAutocommit(false);
      m_inGroup = true;
      m_due = Clock::now() + kGroupTime;
    }
    if (statement.Execute(values)) break;
    const auto diagnostics = ReadDiagnostics(SQL_HANDLE_STMT, statement.Get());
    if (FailureOf(diagnostics) != Failure::kConflict || m_transactionOwner != nullptr || tried == kMaxTries) {
      RaiseDiagnostics(diagnostics, statement.Sql());
    }
    // Two connections wait for each other's rows. What this group has written is written again, each
    // statement for itself, so that it holds no row while it waits for another.
    if (m_inGroup) Replay(std::exchange(m_group, {}));
    WaitBeforeTry(tried);
  }
  const std::int64_t rows = statement.RowCount();
  if (m_inGroup) {
    m_group.push_back({statement.Sql(), values});
    Idle();
  }
  return rows;
}

void Session::Replay(std::vector<GroupedWrite> writes) {
  EndTransaction(false);
  m_inGroup = false;
  SetAutocommit(true);
  for (const GroupedWrite& write : writes) {
    OdbcStatement statement(*this, write.sql);
    for (int tried = 1; !statement.Execute(write.values); ++tried) {
      const auto diagnostics = ReadDiagnostics(SQL_HANDLE_STMT, statement.Get());
      if (FailureOf(diagnostics) != Failure::kConflict || tried == kMaxTries) {
        ++m_commits.lost;
        RaiseDiagnostics(diagnostics, write.sql);
      }
      WaitBeforeTry(tried);
    }
  }
  ++m_commits.committed;
}

void Session::RunSchemaChange(const std::vector<std::string>& statements) {
  Flush();
  m_streaming.Detach();
  const bool own = m_transactionOwner == nullptr;
  ForgetPlans();
  for (int tried = 1;; ++tried) {
    if (own) SetAutocommit(false);
    std::vector<Diagnostic> diagnostics;
    std::string_view failed;
    for (const std::string& sql : statements) {
      const StatementHandle statement = AllocateStatement();
      WideText text(sql);
      const SQLRETURN result = Call(nullptr, [&] {
        return SQLExecDirectW(statement.Get(), text.Data(), static_cast<SQLINTEGER>(text.Size()));
      });
      if (SQL_SUCCEEDED(result) || result == SQL_NO_DATA) continue;
      diagnostics = ReadDiagnostics(SQL_HANDLE_STMT, statement.Get());
      failed = sql;
      break;
    }
    if (own) {
      if (failed.empty() && !SQL_SUCCEEDED(SQLEndTran(SQL_HANDLE_DBC, Get(), SQL_COMMIT))) {
        diagnostics = ReadDiagnostics(SQL_HANDLE_DBC, Get());
        failed = statements.back();
      }
      if (!failed.empty()) SQLEndTran(SQL_HANDLE_DBC, Get(), SQL_ROLLBACK);
      SetAutocommit(true);
    }
    if (failed.empty()) return;
    if (FailureOf(diagnostics) != Failure::kConflict || !own || tried == kMaxTries) {
      RaiseDiagnostics(diagnostics, failed);
    }
    WaitBeforeTry(tried);
  }
}

std::vector<std::vector<std::string>> Session::Ask(const std::string& sql, const std::vector<Value>& values) {
  FetchPiecewise(false);
  OdbcStatement statement(*this, sql);
  if (!statement.Execute(values)) Raise(SQL_HANDLE_STMT, statement.Get(), sql);
  std::vector<std::vector<std::string>> rows;
  for (RowReader& reader = statement.Rows(); reader.Next();) {
    std::vector<std::string>& row = rows.emplace_back();
    for (std::size_t i = 0; i < reader.Columns().size(); ++i) row.push_back(ToText(reader.Value(i)));
  }
  return rows;
}

// ---- commits in groups

void Session::SetAutocommit(bool on) {
  SQLSetConnectAttrW(Get(), SQL_ATTR_AUTOCOMMIT, AsPointer(on ? SQL_AUTOCOMMIT_ON : SQL_AUTOCOMMIT_OFF),
                     SQL_IS_UINTEGER);
}

void Session::EndTransaction(bool commit) {
  m_streaming.Detach();
  if (SQL_SUCCEEDED(SQLEndTran(SQL_HANDLE_DBC, Get(), commit ? SQL_COMMIT : SQL_ROLLBACK))) return;
  Raise(SQL_HANDLE_DBC, Get(), commit ? "COMMIT" : "ROLLBACK");
}

void Session::CommitGroup() {
  if (!m_inGroup) return;
  m_inGroup = false;
  const std::vector<GroupedWrite> written = std::exchange(m_group, {});
  try {
    EndTransaction(true);
  } catch (...) {
    ++m_commits.lost;
    SQLEndTran(SQL_HANDLE_DBC, Get(), SQL_ROLLBACK);
    SetAutocommit(true);
    throw;
  }
  ++m_commits.committed;
  SetAutocommit(true);
}

void Session::Idle() {
  if (m_inGroup && Clock::now() >= m_due) CommitGroup();
}

void Session::Flush() {
  CommitGroup();
}

void Session::EndGroups() {
  m_grouping = false;
  CommitGroup();
}

// ---- transactions

void Session::BeginTransaction(const Database& owner) {
  if (m_transactionOwner != nullptr) {
    throw Error(error_number::kInvalidOperation,
                "Invalid operation: a transaction has begun already on '" + m_server + "'.", "Engine");
  }
  Flush();
  SetAutocommit(false);
  m_transactionOwner = &owner;
  m_textsBefore = *m_texts;
}

void Session::CommitTransaction() {
  EndTransaction(true);
  m_transactionOwner = nullptr;
  SetAutocommit(true);
}

void Session::UndoTransaction() {
  m_transactionOwner = nullptr;
  *m_texts = std::move(m_textsBefore);
  const bool undone = SQL_SUCCEEDED(SQLEndTran(SQL_HANDLE_DBC, Get(), SQL_ROLLBACK));
  const auto diagnostics = undone ? std::vector<Diagnostic>() : ReadDiagnostics(SQL_HANDLE_DBC, Get());
  SetAutocommit(true);
  ForgetPlans();  // saved queries may be others again
  if (!undone) RaiseDiagnostics(diagnostics, "ROLLBACK");
}

}  // namespace kxrestore::engine::odbc
