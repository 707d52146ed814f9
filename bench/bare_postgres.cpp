#include "bench/bare_postgres.h"

#include <charconv>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <set>

#include "base/error.h"
#include "bench/bare_sqlite.h"

namespace kxrestore::bench {
namespace {

constexpr std::size_t kCopyPiece = 1 << 20;

struct CopiedTable {
  const char* name;
  const char* columns;
  int columnCount;
};

constexpr CopiedTable kTables[] = {
    {"SetNames", "ID, Name", 2},
    {"LongPaths", "PathID, LongPath", 2},
    {"BackupAudit", "SetNameID, DateStamp, Extension, Permanent, Status", 5},
    {"Catalog",
     "ID, DateStamp, SetNameID, Extension, Filename, File, LongPathID, StoreName, StoreMethod, Plugin, "
     "Restore, OrigSize, Status, Attributes, SubFolder, EncryptMethod, OrigName",
     17},
};

std::string Setting(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr) throw Error(1, std::string(name) + " is not set: there is no server to measure");
  return value;
}

void AppendCopied(std::string& line, std::string_view text) {
  if (text.data() == nullptr) {
    line += "\\N";
    return;
  }
  for (const char c : text) {
    if (c == '\\') line += '\\';
    line += c;
  }
}

void CopyTable(const std::string& file, BarePostgres& server, const CopiedTable& table) {
  BareDatabase catalog(file);
  const std::string select = std::string("SELECT ") + table.columns + " FROM " + table.name;
  BareStatement rows(catalog.Get(), select.c_str());
  std::vector<std::string> pieces(1);
  while (rows.Step()) {
    if (pieces.back().size() > kCopyPiece) pieces.emplace_back();
    for (int column = 0; column < table.columnCount; ++column) {
      AppendCopied(pieces.back(), rows.Text(column));
      pieces.back() += column + 1 < table.columnCount ? '\t' : '\n';
    }
  }
  server.Copy(std::string("COPY ") + table.name + " (" + table.columns + ") FROM STDIN", pieces);
}

}  // namespace

const ServerAddress& TestServer() {
  static const ServerAddress address = [] {
    constexpr std::string_view kPort = ";PORT=";
    const std::string server = Setting("KX_TEST_SERVER");
    const std::size_t port = server.find(kPort);
    if (port == std::string::npos) throw Error(1, "KX_TEST_SERVER names no port");
    return ServerAddress{.host = server.substr(0, port),
                         .user = Setting("KX_TEST_USER"),
                         .password = Setting("KX_TEST_PASSWORD"),
                         .port = std::atoi(server.c_str() + port + kPort.size())};
  }();
  return address;
}

std::string ServerCatalog(std::int64_t rows) {
  static std::set<std::int64_t> made;
  std::string name = "one_run_" + std::to_string(rows);
  if (!made.insert(rows).second) return name;
  BarePostgres first("postgres");
  first.Execute("DROP DATABASE IF EXISTS " + name);
  first.Execute("CREATE DATABASE " + name);
  BarePostgres server(name);
  std::ifstream script(KX_POSTGRESQL_CATALOG);
  server.Execute(std::string(std::istreambuf_iterator<char>(script), {}));
  for (const CopiedTable& table : kTables) CopyTable(BenchCatalog(rows), server, table);
  for (const CopiedTable& table : kTables) server.Execute(std::string("VACUUM ANALYZE ") + table.name);
  return name;
}

std::int64_t BareRows::Changed() const {
  return std::atoll(PQcmdTuples(m_result.get()));
}

std::int64_t BareRows::Integer(std::int64_t row, int column) const {
  const std::string_view text = Text(row, column);
  std::int64_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

BarePostgres::BarePostgres(const std::string& database) {
  const ServerAddress& server = TestServer();
  const std::string port = std::to_string(server.port);
  const char* const words[] = {"host", "port", "user", "password", "dbname", nullptr};
  const char* const values[] = {server.host.c_str(),     port.c_str(),     server.user.c_str(),
                                server.password.c_str(), database.c_str(), nullptr};
  m_connection.reset(PQconnectdbParams(words, values, 0));
  if (PQstatus(m_connection.get()) != CONNECTION_OK) throw Error(1, PQerrorMessage(m_connection.get()));
  PQsetNoticeProcessor(
      m_connection.get(), [](void*, const char*) {}, nullptr);
}

BareRows BarePostgres::Checked(PGresult* result) const {
  BareRows rows(result);
  const ExecStatusType status = PQresultStatus(result);
  if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK && status != PGRES_COPY_IN) {
    throw Error(1, PQerrorMessage(m_connection.get()), "bench");
  }
  return rows;
}

BareRows BarePostgres::Execute(const std::string& sql) {
  return Checked(PQexec(m_connection.get(), sql.c_str()));
}

void BarePostgres::Prepare(const char* name, const char* sql) {
  Checked(PQprepare(m_connection.get(), name, sql, 0, nullptr));
}

BareRows BarePostgres::Run(const char* name, const std::vector<const char*>& values) {
  return Checked(PQexecPrepared(m_connection.get(), name, static_cast<int>(values.size()), values.data(),
                                nullptr, nullptr, 0));
}

// Sent as one text, as a driver does.
BareRows BarePostgres::RunAlone(const char* name, const std::vector<const char*>& values) {
  std::string sql = std::string("RELEASE alone;SAVEPOINT alone;EXECUTE ") + name;
  for (std::size_t i = 0; i < values.size(); ++i) {
    sql += i == 0 ? " ('" : ", '";
    for (const char* c = values[i]; *c != '\0'; ++c) sql.append(*c == '\'' ? 2 : 1, *c);
    sql += '\'';
  }
  return Execute(sql + ")");
}

void BarePostgres::Copy(const std::string& sql, const std::vector<std::string>& pieces) {
  PGconn* connection = m_connection.get();
  Execute(sql);
  for (const std::string& piece : pieces)
    PQputCopyData(connection, piece.data(), static_cast<int>(piece.size()));
  PQputCopyEnd(connection, nullptr);
  Checked(PQgetResult(connection));
  while (PGresult* rest = PQgetResult(connection)) PQclear(rest);
}

}  // namespace kxrestore::bench
