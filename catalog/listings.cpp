#include "catalog/listings.h"

namespace kxrestore::catalog {

std::unique_ptr<engine::Recordset> OpenRuns(engine::Database& database) {
  return database.OpenRecordset(
      "SELECT SetNames.Name, BackupAudit.DateStamp, BackupAudit.SetNameID, BackupAudit.Extension, "
      "BackupAudit.Permanent, BackupAudit.Status "
      "FROM SetNames INNER JOIN BackupAudit ON SetNames.ID = BackupAudit.SetNameID "
      "Where (((BackupAudit.Status) = 6)) "
      "ORDER BY SetNames.Name, BackupAudit.DateStamp DESC; ",
      engine::RecordsetType::kSnapshot);
}

void AppendRun(std::string& list, std::string_view extension) {
  if (!list.empty()) list += ", ";
  list.append("\"").append(extension).append("\"");
}

std::string RunFilter(std::string_view list) {
  return std::string("In (").append(list).append(")");
}

namespace {

// The name that all versions of a file share.
std::string OriginalName(engine::Database& database, std::int64_t setId, std::string_view extension,
                         std::string_view filename) {
  engine::Sql sql("SELECT Catalog.OrigName FROM [Catalog] WHERE (((Catalog.SetNameID)=");
  sql.AddNumber(setId).Add(") AND ((Catalog.Extension)=").AddText(extension);
  sql.Add(") AND ((Catalog.Filename)=").AddText(filename).Add("));");
  const auto rows = database.OpenRecordset(sql, engine::RecordsetType::kSnapshot);
  std::string name = rows->Eof() ? std::string() : rows->Fields("OrigName").Text();
  rows->Close();
  return name.empty() ? std::string(filename) : name;
}

// A pattern that matches only this name, ignoring case as "latest" does.
std::string Exactly(std::string_view name) {
  std::string pattern = "\"" + NameAsMask(name);
  for (std::size_t quote = pattern.find('"', 1); quote != std::string::npos;
       quote = pattern.find('"', quote + 2)) {
    pattern.insert(quote, 1, '"');
  }
  return pattern += '"';
}

}  // namespace

std::string NameAsMask(std::string_view name) {
  std::string mask;
  for (const char character : name) {
    if (character == '*' || character == '?' || character == '#' || character == '[') {
      mask.append("[").append(1, character).append("]");
    } else {
      mask += character;
    }
  }
  return mask;
}

std::unique_ptr<engine::Recordset> OpenVersions(engine::Database& database, std::int64_t setId,
                                                std::string_view extension, std::string_view storedName,
                                                bool aggregate, const engine::ColumnNames& read) {
  std::string sql = "SELECT FullCatalog.* FROM FullCatalog WHERE (((FullCatalog.";
  if (aggregate) {
    sql.append("File) Like ").append(Exactly(storedName));
    sql.append(") AND ((FullCatalog.Plugin) Like \"Exchange Server*\"");
  } else {
    sql.append("OrigName) Like ").append(Exactly(OriginalName(database, setId, extension, storedName)));
  }
  sql.append(") AND ((FullCatalog.Status)=2)) ORDER BY FullCatalog.DateStamp DESC, FullCatalog.ID DESC;");
  return database.OpenRecordset(sql, engine::RecordsetType::kSnapshot, read);
}

std::unique_ptr<engine::Recordset> OpenSelections(engine::Database& database,
                                                  const engine::ColumnNames& read) {
  return database.OpenRecordset(
      "SELECT Catalog.SetNameID, Catalog.OrigSize, Catalog.DateStamp, Catalog.Extension, Catalog.Filename, "
      "Catalog.File, Catalog.Restore, Catalog.StoreMethod, Catalog.Plugin, Catalog.StoreName, "
      "IIf(IsNull([LongPath]),[filename],[longpath]) AS RestoreFile, SetNames.Name "
      "FROM SetNames RIGHT JOIN (LongPaths RIGHT JOIN [Catalog] ON LongPaths.PathID = Catalog.LongPathID) "
      "ON SetNames.ID = Catalog.SetNameID "
      "WHERE (((Catalog.Restore)=True));",
      engine::RecordsetType::kSnapshot, read);
}

std::unique_ptr<engine::Recordset> CountSelections(engine::Database& database) {
  return database.OpenRecordset("SELECT Count(*) AS Files FROM [Catalog] WHERE (((Catalog.Restore)=True));",
                                engine::RecordsetType::kSnapshot);
}

}  // namespace kxrestore::catalog
