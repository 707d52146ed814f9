#include "host/catalog_maker/sqlite_writer.h"

#include <deque>

#include "host/catalog_maker/sqlite_file.h"
#include "host/catalog_maker/table_writer.h"

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

class FileWriter final : public TableWriter {
 public:
  explicit FileWriter(sqlite3* database) {
    for (const char* sql : kInsertStatements) m_inserts.emplace_back(database, sql);
  }

 private:
  void Insert(Table table, std::initializer_list<Cell> row) override {
    m_inserts[static_cast<std::size_t>(table)].Run(row);
  }

  std::deque<Statement> m_inserts;
};

}  // namespace

void WriteCatalogFile(const std::string& path, const std::function<void(CatalogSink&)>& fill) {
  const Database database = MakeFile(path, kTables);
  FileWriter writer(database.get());
  fill(writer);
  Execute(database.get(), kIndex);
  Execute(database.get(), "COMMIT");
}

}  // namespace kxrestore::sample
