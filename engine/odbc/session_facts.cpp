// The part of Session that queries the properties of driver and server, and configures them.
#include <algorithm>

#include "engine/error_numbers.h"
#include "engine/odbc/odbc_session.h"

namespace kxrestore::engine::odbc {
namespace {

using std::chrono::milliseconds;

// Options of the driver for PostgreSQL.
constexpr SQLINTEGER kPostgresDeclareFetch = 65539;
constexpr SQLINTEGER kPostgresServerSidePrepare = 65540;
constexpr SQLINTEGER kPostgresFetchRows = 65541;

constexpr std::size_t kPiecewiseRows = 8192;
constexpr milliseconds kLockStep(100);  // a smaller change of the limit is not worth a round trip

struct DriverReport {
  std::string dbms, driver, escape;
  std::uint32_t identifierCase = 0, activities = 0, parts = 0;
};

// Drivers may lack any of these properties; only the server's name is required.
Outcome ReadReport(DriverHandles& handles, DriverReport& report) {
  const ConnectionHandle& connection = handles.connection;
  connection.GetInfo(SQL_DRIVER_NAME, report.driver).Ignore();
  connection.GetInfo(SQL_SEARCH_PATTERN_ESCAPE, report.escape).Ignore();
  connection.GetInfo(SQL_IDENTIFIER_CASE, report.identifierCase).Ignore();
  connection.GetInfo(SQL_MAX_CONCURRENT_ACTIVITIES, report.activities).Ignore();
  connection.GetInfo(SQL_GETDATA_EXTENSIONS, report.parts).Ignore();
  return connection.GetInfo(SQL_DBMS_NAME, report.dbms);
}

std::unique_ptr<jet_sql::Dialect> MakeDialect(const ServerFacts& facts) {
  if (facts.IsPostgres()) {
    return std::make_unique<jet_sql::PostgresDialect>(facts.order, facts.foldsAsciiOnly);
  }
  if (facts.IsSqlServer()) return std::make_unique<jet_sql::TsqlDialect>(facts.caseSensitive);
  Raise(error_number::kOdbcFailed,
        "ODBC - call failed: the server is '" + facts.dbms + "', neither SQL Server nor PostgreSQL.");
}

}  // namespace

// Whether a text that is fetched as bytes is UTF-8: a driver may convert it to the encoding of the process,
// or not return bytes at all.
bool Session::ReturnsUtf8() {
  constexpr std::string_view kEveryKind = "a\xC3\xA4\xD0\xB6\xE2\x82\xAC\xE6\xBC\xA2\xF0\x9F\x98\x80";
  const auto bytes = std::make_shared<std::string>(64, '\0');
  const auto read = [bytes, text = WideText("SELECT CAST('" + std::string(kEveryKind) + "' AS text)")](
                        DriverHandles& handles) mutable {
    StatementHandle statement;
    SQLLEN size = 0;
    Outcome outcome = statement.Allocate(handles.connection);
    if (outcome.Failed()) return outcome;
    outcome = statement.ExecuteDirect(text);
    if (!outcome.Failed()) outcome = statement.Fetch();
    if (!outcome.Failed()) outcome = statement.GetData(0, SQL_C_BINARY, bytes->data(), bytes->size(), &size);
    bytes->resize(static_cast<std::size_t>(std::clamp<SQLLEN>(size, 0, 64)));
    const Outcome freed = statement.Free();
    return outcome.Failed() ? outcome : freed;
  };
  return !m_connection.Run(read).Failed() && *bytes == kEveryKind;
}

void Session::ReadFacts() {
  const auto start = Clock::now();
  const auto report = std::make_shared<DriverReport>();
  const Outcome outcome =
      m_connection.Run([report](DriverHandles& handles) { return ReadReport(handles, *report); });
  if (outcome.Failed()) RaiseFailure(outcome, Place());
  m_facts.dbms = report->dbms;
  m_facts.patternEscape = report->escape;
  m_facts.foldsToLower = report->identifierCase == SQL_IC_LOWER;
  m_facts.onlyOneActive = report->activities == 1;
  constexpr std::uint32_t kNeeded = SQL_GD_BLOCK | SQL_GD_BOUND | SQL_GD_ANY_COLUMN | SQL_GD_ANY_ORDER;
  m_facts.readsPartsInBlocks = (report->parts & kNeeded) == kNeeded;
  if (m_facts.IsPostgres()) {
    ReadPostgresFacts(report->driver.find("psqlodbc") != std::string::npos);
  } else if (m_facts.IsSqlServer()) {
    m_facts.undoesStatementsAlone = true;
    const auto rows =
        Ask("SELECT SCHEMA_NAME(), CAST(DATABASEPROPERTYEX(DB_NAME(), 'Collation') AS nvarchar(128))");
    const std::string& collation = rows.at(0).at(1);
    m_facts.schema = rows.at(0).at(0);
    m_facts.caseSensitive =
        collation.find("_CS_") != std::string::npos || collation.find("_BIN") != std::string::npos;
  }
  m_usualTime = Clock::now() - start;
  m_dialect = MakeDialect(m_facts);
}

void Session::ReadPostgresFacts(bool isPsqlodbc) {
  if (isPsqlodbc) {
    m_facts.fetchesAllAtOnce = m_facts.preparesByName = m_facts.serverKeepsTime = true;
    m_facts.undoesStatementsAlone = true;
    // The driver sends a savepoint before a prepared statement separately, before plain text together with
    // it.
    const auto choose = [](DriverHandles& handles) {
      Outcome outcome = handles.connection.SetAttribute(kPostgresServerSidePrepare, 0);
      if (outcome.Failed()) return outcome;
      return handles.connection.SetAttribute(kPostgresFetchRows, kPiecewiseRows);
    };
    const Outcome outcome = m_connection.Run(choose);
    if (outcome.Failed()) RaiseFailure(outcome, Place());
  }
  m_lockLimit = std::max(m_action->lockTime, milliseconds(1));
  const auto rows = Ask(
      "SELECT current_schema(), datcollate, datctype, (SELECT count(*) FROM pg_catalog.pg_collation WHERE "
      "collname = 'und-x-icu'), current_setting('client_encoding'), current_setting('server_encoding'), "
      // Optimise for whole listings, not for their first rows.
      "set_config('cursor_tuple_fraction', '1', false), "
      "set_config('lock_timeout', '" +
      std::to_string(m_lockLimit.count()) +
      "', false), "
      // Within about a minute the server notices a broken network connection and unlocks this program's rows.
      "set_config('tcp_keepalives_idle', '30', false), set_config('tcp_keepalives_interval', '10', false), "
      "set_config('tcp_keepalives_count', '3', false), "
      // A server that is compiling a statement does not react to a cancel.
      "CASE WHEN current_setting('server_version_num')::int >= 110000 THEN set_config('jit', 'off', false) "
      "END" +
      // Set once: the driver's own timeout would be sent before and after each of its catalog queries.
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
    m_facts.order = hasCollation ? Order::kCollation : row[5] == "UTF8" ? Order::kPlainLetters : Order::kOwn;
  }
  m_facts.foldsAsciiOnly = hasCollation && plain(row[2]);
  m_facts.textsAsBytes = isPsqlodbc && row[4] == "UTF8" && row[5] != "SQL_ASCII" && ReturnsUtf8();
}

void Session::FetchPiecewise(bool piecewise) {
  if (!m_facts.fetchesAllAtOnce || m_piecewise == piecewise) return;
  const auto choose = [piecewise](DriverHandles& handles) {
    return handles.connection.SetAttribute(kPostgresDeclareFetch, piecewise ? 1 : 0);
  };
  const Outcome outcome = m_connection.Run(choose);
  if (outcome.Failed()) RaiseFailure(outcome, Place());
  m_piecewise = piecewise;
}

// Sets the time that the next statement may wait for a lock. Servers without this setting are bound by the
// time limit of the statement.
void Session::LimitLockWaits() {
  const milliseconds left = std::max(m_action->lockTime, milliseconds(1));
  if (m_lockLimit.count() > 0 && std::chrono::abs(m_lockLimit - left) < kLockStep && left > kLockStep) return;
  if (m_lockLimit == left) return;
  const std::string limit = std::to_string(left.count());
  if (m_facts.IsPostgres()) {
    Ask("SELECT set_config('lock_timeout', '" + limit + "', false)");
  } else if (m_facts.IsSqlServer()) {
    OdbcStatement statement(*this, "SET LOCK_TIMEOUT " + limit);
    const Outcome outcome = statement.ExecuteDirect();
    if (outcome.Failed()) RaiseFailure(outcome, statement.Sql().Text());
  }
  m_lockLimit = left;
}

}  // namespace kxrestore::engine::odbc
