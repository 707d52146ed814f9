#include "host/catalog_maker/server_writer.h"

#include <optional>
#include <vector>

#include "base/error.h"
#include "engine/odbc/odbc_database.h"
#include "engine/odbc/odbc_statement.h"

namespace kxrestore::sample {

namespace {

namespace odbc = engine::odbc;
using engine::Value;

template <typename T>
Value ValueOf(const std::optional<T>& value) {
  return value ? Value(std::in_place_type<std::conditional_t<std::is_integral_v<T>, std::int64_t, T>>, *value)
               : Value();
}

Value Date(const std::optional<std::string>& text) {
  const auto date = text ? engine::ToDateTime(*text) : std::nullopt;
  return date ? Value(*date) : Value();
}

Value Flag(const std::optional<bool>& flag) {
  return flag ? Value(*flag) : Value();
}

}  // namespace

struct ServerWriter::Connection {
  explicit Connection(const std::string& connect)
      : session(std::make_shared<odbc::Session>(connect, false, nullptr)), database(session, false) {
    database.BeginTrans();
  }

  std::shared_ptr<odbc::Session> session;
  odbc::OdbcDatabase database;
  // The columns of a catalog's tables in their order: some of their names are words of one server or another.
  odbc::OdbcStatement addSet{*session, "INSERT INTO SetNames VALUES (?,?)"};
  odbc::OdbcStatement addRun{
      *session,
      "INSERT INTO BackupAudit (SetNameID, DateStamp, Extension, Permanent, Status) VALUES (?,?,?,?,?)"};
  odbc::OdbcStatement addLongPath{*session, "INSERT INTO LongPaths VALUES (?,?)"};
  odbc::OdbcStatement addFile{*session, "INSERT INTO Catalog VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)"};
  std::vector<Value> values;

  // Its slots are used again for the next row.
  void Add(odbc::OdbcStatement& statement) {
    session->RunWrite(statement, values);
    values.clear();
  }
};

ServerWriter::ServerWriter(const std::string& connect)
    : m_connection(std::make_unique<Connection>(connect)) {}

ServerWriter::~ServerWriter() = default;

void ServerWriter::AddSet(const SetRow& row) {
  m_connection->values = {row.id, row.name};
  m_connection->Add(m_connection->addSet);
}

void ServerWriter::AddRun(const RunRow& row) {
  m_connection->values = {row.setId, Date(row.dateStamp), row.extension, Flag(row.permanent),
                          ValueOf(row.status)};
  m_connection->Add(m_connection->addRun);
}

void ServerWriter::AddLongPath(const LongPathRow& row) {
  m_connection->values = {row.id, ValueOf(row.path)};
  m_connection->Add(m_connection->addLongPath);
}

void ServerWriter::AddFile(const FileRow& row) {
  m_connection->values = {row.id,
                          Date(row.dateStamp),
                          row.setId,
                          row.extension,
                          row.filename,
                          ValueOf(row.file),
                          ValueOf(row.longPathId),
                          row.storeName,
                          std::int64_t{row.storeMethod},
                          ValueOf(row.plugin),
                          row.restore,
                          ValueOf(row.origSize),
                          ValueOf(row.status),
                          std::int64_t{row.attributes},
                          row.subFolder,
                          std::int64_t{row.encryptMethod},
                          row.origName};
  m_connection->Add(m_connection->addFile);
}

void ServerWriter::Finish() {
  m_connection->database.CommitTrans();
  m_connection.reset();
}

void FillServerCatalog(const std::string& connect, const SampleOptions& options) {
  ServerWriter writer(connect);
  Generate(options, writer);
  writer.Finish();
}

}  // namespace kxrestore::sample
