#include "catalog/restore_query.h"

#include "base/error.h"
#include "base/text.h"
#include "engine/error_numbers.h"

namespace kxrestore::catalog {
namespace {

namespace query {
constexpr std::string_view kAll = "FullCatalog";
constexpr std::string_view kBySet = "FullCatalogBySet";
constexpr std::string_view kLatest = "FullCatalogLatest";
constexpr std::string_view kLatestBySet = "FullCatalogLatestBySet";
}  // namespace query

constexpr std::string_view kNewestBySet =
    "SELECT FullCatalogBySet.OrigName AS OrigName, Max(FullCatalogBySet.DateStamp) AS DateStamp, "
    "Max(FullCatalogBySet.ID) AS ID "
    "From FullCatalogBySet where FullCatalogBySet.Status = 2 GROUP BY FullCatalogBySet.OrigName;";

constexpr std::string_view kNewest =
    "SELECT FullCatalog.OrigName AS OrigName, Max(FullCatalog.DateStamp) AS DateStamp, Max(FullCatalog.ID) "
    "AS ID "
    "FROM "
    "FullCatalog where FullCatalog.Status = 2 GROUP BY FullCatalog.OrigName;";

constexpr std::string_view kLatestBySetText =
    "SELECT FullCatalogBySet.OrigName AS OrigName, Max(FullCatalogBySet.DateStamp) AS DateStamp, "
    "First(FullCatalogBySet.ID) AS ID, First(FullCatalogBySet.SetNameID) AS SetNameID, "
    "First(FullCatalogBySet.Extension) AS Extension, First(FullCatalogBySet.OrigSize) AS OrigSize, "
    "First(FullCatalogBySet.File) AS File, "
    "First(FullCatalogBySet.Restore) AS Restore, First(FullCatalogBySet.Status) AS Status, "
    "First(FullCatalogBySet.Attributes) AS Attributes, First(FullCatalogBySet.Filename) AS Filename, "
    "First(FullCatalogBySet.StoreMethod) AS StoreMethod, First(FullCatalogBySet.StoreName) AS StoreName, "
    "First(FullCatalogBySet.LongPathID) AS LongPathID, First(FullCatalogBySet.SetName) AS SetName, "
    "First(FullCatalogBySet.Plugin) AS Plugin, First(FullCatalogBySet.SubFolder) AS SubFolder, "
    "First(FullCatalogBySet.EncryptMethod) AS EncryptMethod "
    "From FullCatalogBySet INNER JOIN qryGetLatestBySet ON FullCatalogBySet.ID = qryGetLatestBySet.ID "
    "WHERE FullCatalogBySet.Status = 2 "
    "GROUP BY FullCatalogBySet.OrigName ORDER BY First(FullCatalogBySet.DateStamp) DESC;";

constexpr std::string_view kLatestText =
    "SELECT FullCatalog.OrigName AS OrigName, Max(FullCatalog.DateStamp) AS DateStamp, "
    "First(FullCatalog.ID) AS ID, First(FullCatalog.SetNameID) AS SetNameID, "
    "First(FullCatalog.Extension) AS Extension, "
    "First(FullCatalog.File) AS File, First(FullCatalog.Restore) AS Restore, "
    "First(FullCatalog.OrigSize) AS OrigSize, First(FullCatalog.Status) AS Status, "
    "First(FullCatalog.Attributes) AS Attributes, First(FullCatalog.Filename) AS Filename, "
    "First(FullCatalog.StoreMethod) AS StoreMethod, First(FullCatalog.StoreName) AS StoreName, "
    "First(FullCatalog.LongPathID) AS LongPathID, First(FullCatalog.SetName) AS SetName, "
    "First(FullCatalog.SubFolder) AS SubFolder, "
    "First(FullCatalog.Plugin) AS Plugin, First(FullCatalog.EncryptMethod) AS EncryptMethod "
    "FROM FullCatalog INNER JOIN qryGetLatest ON "
    "qryGetLatest.ID = FullCatalog.ID WHERE FullCatalog.Status = 2 "
    "GROUP BY FullCatalog.OrigName ORDER BY First(FullCatalog.DateStamp) DESC , "
    "First(FullCatalog.ID) DESC;";

// Replaces a saved query; a failing deletion is ignored.
void Replace(engine::Database& database, std::string_view name, std::string_view text) {
  try {
    database.DeleteQueryDef(name);
  } catch (const Error&) {
    // An error with the old query does not matter if the new one can be created.
  }
  database.CreateQueryDef(name, text);
}

// The same, but only a missing query is ignored.
void ReplaceIfThere(engine::Database& database, std::string_view name, std::string_view text) {
  try {
    database.DeleteQueryDef(name);
  } catch (const Error& error) {
    if (error.Number() != engine::error_number::kItemNotFound) throw;
  }
  database.CreateQueryDef(name, text);
}

// The definition of FullCatalog with a restriction in place of its end: up to the ";", or without its last
// character.
std::string BySetText(std::string_view fullCatalog, std::int32_t setId, std::string_view ext) {
  const auto semicolon = fullCatalog.find(';');
  if (semicolon != std::string_view::npos) {
    fullCatalog = fullCatalog.substr(0, semicolon);
  } else if (!fullCatalog.empty()) {
    fullCatalog = LeftCharacters(fullCatalog, CharacterCount(fullCatalog) - 1);
  }
  std::string text(fullCatalog);
  if (ext.empty()) {
    text.append(" WHERE Catalog.SetNameID = ").append(std::to_string(setId));
  } else {
    text.append(" WHERE Catalog.Extension ").append(ext);
  }
  return text += ' ';
}

// Creates the saved queries that the listing needs. Returns the name of the one to list.
std::string_view PrepareSource(engine::Database& database, std::int32_t setId, bool latest,
                               std::string_view ext) {
  if (!latest) return query::kAll;
  if (setId == 0) {
    Replace(database, query::kLatest, kLatestText);
    return query::kLatest;
  }
  try {
    database.DeleteQueryDef(query::kBySet);
  } catch (const Error&) {
    // as in Replace; the text of FullCatalog is read in between
  }
  database.CreateQueryDef(query::kBySet, BySetText(database.QueryText(query::kAll), setId, ext));
  Replace(database, query::kLatestBySet, kLatestBySetText);
  return query::kLatestBySet;
}

// `(T.column` and a blank.
void BeginClause(std::string& sql, std::string_view table, std::string_view column) {
  sql.append("(").append(table).append(".").append(column).append(" ");
}

void AppendMaskClause(std::string& sql, std::string_view table, std::string_view mask) {
  BeginClause(sql, table, "OrigName");
  sql.append("Like \"*");
  for (const char character : mask) {
    sql += character;
    if (character == '"') sql += '"';  // or the mask would end here and the rest of it be SQL
  }
  sql.append("*\")");
}

void AppendStatusClause(std::string& sql, std::string_view table) {
  BeginClause(sql, table, "Status");
  sql.append("= 2) ");
}

std::string ListingText(std::string_view table, std::int32_t setId, std::string_view mask,
                        std::string_view ext) {
  std::string sql = "SELECT ";
  if (setId == 0 && !mask.empty()) {
    sql.append("* from ").append(table).append(" WHERE (");
    AppendMaskClause(sql, table, mask);
    sql.append(" AND ");
    AppendStatusClause(sql, table);
    sql.append(");");
    return sql;
  }
  sql.append(table).append(".* from ").append(table).append(" ");
  if (setId == 0) {
    AppendStatusClause(sql, table);
    return sql;
  }
  sql.append("WHERE (");
  BeginClause(sql, table, "SetNameID");
  sql.append("= ").append(std::to_string(setId)).append(")");
  if (!ext.empty()) {
    sql.append(" AND ");
    BeginClause(sql, table, "Extension");
    sql.append(ext).append(")");
  }
  if (!mask.empty()) {
    sql.append(" AND ");
    AppendMaskClause(sql, table, mask);
  }
  sql.append(" AND ");
  AppendStatusClause(sql, table);
  sql.append(") ");
  return sql;
}

}  // namespace

void CreateLatestQueries(engine::Database& database) {
  try {
    ReplaceIfThere(database, "qryGetLatestBySet", kNewestBySet);
    ReplaceIfThere(database, "qryGetLatest", kNewest);
  } catch (const Error&) {
    // The listing that needs them reports the error.
  }
}

std::unique_ptr<engine::Recordset> BuildRestoreQuery(engine::Database& database, std::int32_t setId,
                                                     bool latest, std::string_view mask, std::string_view ext,
                                                     const engine::ColumnNames& read) {
  CreateLatestQueries(database);
  const auto table = PrepareSource(database, setId, latest, ext);
  return database.OpenRecordset(ListingText(table, setId, mask, ext), engine::RecordsetType::kSnapshot, read);
}

std::unique_ptr<engine::Recordset> OpenNames(engine::Database& database, std::int32_t setId, bool latest,
                                             std::string_view ext) {
  constexpr std::string_view kPoint = ".";
  if (latest) return BuildRestoreQuery(database, setId, latest, kPoint, ext, {"OrigName"});
  return database.OpenRecordset(ListingText(query::kAll, setId, kPoint, ext),
                                engine::RecordsetType::kSnapshot, {"OrigName"});
}

}  // namespace kxrestore::catalog
