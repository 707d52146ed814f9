#include "host/catalog_maker/sqlite_writer.h"

#include "host/catalog_maker/sqlite_file.h"

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

}  // namespace

struct SqliteWriter::Connection {
  explicit Connection(const std::string& path) : database(MakeFile(path, kTables)) {}

  Database database;
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
