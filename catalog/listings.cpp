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
