#include "host/catalog_maker/sqlite_writer.h"

#include <sqlite3.h>

#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

#include "base/error.h"

namespace kxrestore::sample {

namespace {

constexpr char kTables[] = R"sql(
CREATE TABLE SetNames (ID INTEGER PRIMARY KEY, Name TEXT);
CREATE TABLE BackupAudit (ID INTEGER PRIMARY KEY, SetNameID INTEGER, DateStamp TEXT, Extension TEXT,
  Permanent BOOLEAN, Status INTEGER);
CREATE TABLE LongPaths (PathID INTEGER PRIMARY KEY, LongPath TEXT);
CREATE TABLE Catalog (ID INTEGER PRIMARY KEY, DateStamp TEXT, SetNameID INTEGER, Extension TEXT, Filename TEXT,
  File TEXT, LongPathID INTEGER, StoreName TEXT, StoreMethod INTEGER, Plugin TEXT, Restore BOOLEAN,
  OrigSize INTEGER, Status INTEGER, Attributes INTEGER, SubFolder TEXT, EncryptMethod INTEGER, OrigName TEXT);
CREATE VIEW FullCatalog AS SELECT Catalog.OrigName AS OrigName, Catalog.DateStamp AS DateStamp, Catalog.ID AS ID,
  Catalog.SetNameID AS SetNameID, Catalog.Extension AS Extension, Catalog.File AS File, Catalog.Restore AS Restore,
  Catalog.OrigSize AS OrigSize, Catalog.Status AS Status, Catalog.Attributes AS Attributes,
  Catalog.Filename AS Filename, Catalog.StoreMethod AS StoreMethod, Catalog.StoreName AS StoreName,
  Catalog.LongPathID AS LongPathID, SetNames.Name AS SetName, Catalog.SubFolder AS SubFolder,
  Catalog.Plugin AS Plugin, Catalog.EncryptMethod AS EncryptMethod
  FROM Catalog LEFT JOIN SetNames ON SetNames.ID = Catalog.SetNameID;
)sql";

constexpr char kIndex[] = "CREATE INDEX CatalogByRun ON Catalog (SetNameID, Extension, Filename)";

class Statement {
 public:
  Statement(sqlite3* database, const char* sql) : m_database(database) {
    Check(sqlite3_prepare_v3(database, sql, -1, SQLITE_PREPARE_PERSISTENT, &m_statement, nullptr));
  }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;
  ~Statement() { sqlite3_finalize(m_statement); }

  // Parameters in their order; the texts must live until Run().
  Statement& Bind(std::int64_t value) {
    Check(sqlite3_bind_int64(m_statement, ++m_parameter, value));
    return *this;
  }
  Statement& Bind(const std::string& value) {
    Check(sqlite3_bind_text(m_statement, ++m_parameter, value.data(), static_cast<int>(value.size()),
                            SQLITE_STATIC));
    return *this;
  }
  template <typename T>
  Statement& Bind(const std::optional<T>& value) {
    if (value) return Bind(*value);
    Check(sqlite3_bind_null(m_statement, ++m_parameter));
    return *this;
  }

  void Run() {
    sqlite3_step(m_statement);
    m_parameter = 0;
    Check(sqlite3_reset(m_statement));
  }

 private:
  void Check(int code) {
    if (code != SQLITE_OK) throw Error(code, sqlite3_errmsg(m_database), "make_catalog");
  }

  sqlite3* m_database;
  sqlite3_stmt* m_statement = nullptr;
  int m_parameter = 0;
};

struct CloseDatabase {
  void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
};

using Database = std::unique_ptr<sqlite3, CloseDatabase>;

Database OpenAnew(const std::string& path) {
  for (const std::string_view suffix : {"", "-journal", "-wal", "-shm"}) {
    const std::string name = path + std::string(suffix);
    std::error_code problem;
    std::filesystem::remove(std::u8string(name.begin(), name.end()), problem);
    if (problem) throw Error(problem.value(), name + ": " + problem.message(), "make_catalog");
  }
  sqlite3* raw = nullptr;
  const int code = sqlite3_open_v2(path.c_str(), &raw, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
  Database database(raw);
  if (code != SQLITE_OK) throw Error(code, path + ": " + sqlite3_errstr(code), "make_catalog");
  return database;
}

void Execute(sqlite3* database, const char* sql) {
  if (const int code = sqlite3_exec(database, sql, nullptr, nullptr, nullptr); code != SQLITE_OK) {
    throw Error(code, sqlite3_errmsg(database), "make_catalog");
  }
}

// A half-made file is thrown away anyway, so nothing has to be safe before the end.
void Prepare(sqlite3* database) {
  Execute(database, "PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF; PRAGMA cache_size=-65536; BEGIN");
  Execute(database, kTables);
}

}  // namespace

struct SqliteWriter::Connection {
  explicit Connection(const std::string& path) : database(OpenAnew(path)) {}

  Database database;
  // Members are made in this order: the statements need the tables.
  bool prepared = (Prepare(database.get()), true);
  Statement addSet{database.get(), "INSERT INTO SetNames VALUES (?,?)"};
  Statement addRun{
      database.get(),
      "INSERT INTO BackupAudit (SetNameID, DateStamp, Extension, Permanent, Status) VALUES (?,?,?,?,?)"};
  Statement addLongPath{database.get(), "INSERT INTO LongPaths VALUES (?,?)"};
  Statement addFile{database.get(), "INSERT INTO Catalog VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)"};
};

SqliteWriter::SqliteWriter(const std::string& path) : m_connection(std::make_unique<Connection>(path)) {}

SqliteWriter::~SqliteWriter() = default;

void SqliteWriter::AddSet(const SetRow& row) {
  m_connection->addSet.Bind(row.id).Bind(row.name).Run();
}

void SqliteWriter::AddRun(const RunRow& row) {
  m_connection->addRun.Bind(row.setId)
      .Bind(row.dateStamp)
      .Bind(row.extension)
      .Bind(row.permanent)
      .Bind(row.status)
      .Run();
}

void SqliteWriter::AddLongPath(const LongPathRow& row) {
  m_connection->addLongPath.Bind(row.id).Bind(row.path).Run();
}

void SqliteWriter::AddFile(const FileRow& row) {
  m_connection->addFile.Bind(row.id)
      .Bind(row.dateStamp)
      .Bind(row.setId)
      .Bind(row.extension)
      .Bind(row.filename)
      .Bind(row.file)
      .Bind(row.longPathId)
      .Bind(row.storeName)
      .Bind(row.storeMethod)
      .Bind(row.plugin)
      .Bind(row.restore ? 1 : 0)
      .Bind(row.origSize)
      .Bind(row.status)
      .Bind(row.attributes)
      .Bind(row.subFolder)
      .Bind(row.encryptMethod)
      .Bind(row.origName)
      .Run();
}

void SqliteWriter::Finish() {
  Execute(m_connection->database.get(), kIndex);
  Execute(m_connection->database.get(), "COMMIT");
  m_connection.reset();
}

}  // namespace kxrestore::sample
