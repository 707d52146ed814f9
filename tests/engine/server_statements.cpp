#include "tests/engine/server_statements.h"

#include "base/text.h"
#include "catalog/restore_marks.h"
#include "catalog/restore_query.h"
#include "engine/jet_sql/name_resolver.h"
#include "engine/jet_sql/parser.h"
#include "engine/jet_sql/printer.h"
#include "engine/jet_sql/single_rows.h"
#include "engine/jet_sql/tsql_dialect.h"
#include "tests/catalog/recording_database.h"

namespace kxrestore::engine::testing {
namespace {

using jet_sql::KnownColumn;
using jet_sql::KnownRelation;
using jet_sql::ValueKind;

const std::vector<KnownColumn> kCatalogColumns = {
    {"ID", ValueKind::kNumber},          {"DateStamp", ValueKind::kDate},
    {"SetNameID", ValueKind::kNumber},   {"Extension", ValueKind::kText},
    {"Filename", ValueKind::kText},      {"File", ValueKind::kText},
    {"LongPathID", ValueKind::kNumber},  {"StoreName", ValueKind::kText},
    {"StoreMethod", ValueKind::kNumber}, {"Plugin", ValueKind::kText},
    {"Restore", ValueKind::kBoolean},    {"OrigSize", ValueKind::kNumber},
    {"Status", ValueKind::kNumber},      {"Attributes", ValueKind::kNumber},
    {"SubFolder", ValueKind::kText},     {"EncryptMethod", ValueKind::kNumber},
    {"OrigName", ValueKind::kText}};

std::string FullCatalogText() {
  std::string text = "SELECT ";
  for (const KnownColumn& column : kCatalogColumns)
    text += "Catalog." + column.name + " AS " + column.name + ", ";
  return text +
         "SetNames.Name AS SetName FROM SetNames RIGHT JOIN [Catalog] ON SetNames.ID = Catalog.SetNameID;";
}

// What the panels of the dialog ask for.
constexpr const char* kOfThePanels[] = {
    "SELECT SetNames.Name, BackupAudit.DateStamp, BackupAudit.SetNameID, BackupAudit.Extension, "
    "BackupAudit.Permanent, BackupAudit.Status FROM SetNames INNER JOIN BackupAudit ON SetNames.ID = "
    "BackupAudit.SetNameID Where (((BackupAudit.Status) = 6)) ORDER BY SetNames.Name, BackupAudit.DateStamp "
    "DESC; ",
    "SELECT Catalog.ID, Catalog.File, IIf(IsNull([LongPath]),[filename],[longpath]) AS RestoreFile FROM "
    "LongPaths "
    "RIGHT JOIN [Catalog] ON LongPaths.PathID = Catalog.LongPathID WHERE (((Catalog.SetNameID)=1) AND "
    "((Catalog.Extension)='002') AND ((Catalog.Status)=2));",
    "SELECT Catalog.Restore, SetNames.Name FROM SetNames RIGHT JOIN (LongPaths RIGHT JOIN [Catalog] ON "
    "LongPaths.PathID = Catalog.LongPathID) ON SetNames.ID = Catalog.SetNameID WHERE "
    "(((Catalog.Restore)=True));",
    "SELECT Mid([OrigName],InStrRev([OrigName],\".\")) AS FileType, Count(*) AS Files FROM [Catalog] WHERE "
    "(((Catalog.Status)=2) AND ((Catalog.OrigName) Like \"*.*\")) GROUP BY "
    "Mid([OrigName],InStrRev([OrigName],\".\"));",
    "SELECT * FROM ArchiveHeader",
    "INSERT INTO SetNames (ID, Name) VALUES (9, 'it''s new'), (10, 'Büro')",
    "DELETE FROM BackupAudit WHERE SetNameID = 9 AND DateStamp < #11/16/2026 2:25:30 PM#",
};

class CatalogOnServer final : public jet_sql::Relations, public jet_sql::TableFacts {
 public:
  CatalogOnServer() {
    Add("Catalog", true, kCatalogColumns);
    Add("LongPaths", true, {{"PathID", ValueKind::kNumber}, {"LongPath", ValueKind::kText}});
    Add("SetNames", true, {{"ID", ValueKind::kNumber}, {"Name", ValueKind::kText}});
    Add("BackupAudit", true,
        {{"SetNameID", ValueKind::kNumber},
         {"DateStamp", ValueKind::kDate},
         {"Extension", ValueKind::kText},
         {"Permanent", ValueKind::kBoolean},
         {"Status", ValueKind::kNumber}});
    Add("ArchiveHeader", true, {{"Title", ValueKind::kText}});
    std::vector<KnownColumn> listed = kCatalogColumns;
    listed.push_back({"SetName", ValueKind::kText});
    Add("FullCatalog", false, listed);
    // What this component has saved is read by its text.
    for (const auto& [name, text] : ServerStatements()) {
      if (name.empty() || name == "FullCatalog") continue;
      Add(name.c_str(), false, {});
      m_relations.back().text = text;
    }
  }

  const KnownRelation* Find(std::string_view name) override {
    for (const KnownRelation& relation : m_relations) {
      if (EqualIgnoringCase(relation.name, name)) return &relation;
    }
    return nullptr;
  }

  std::optional<std::string> SavedQuery(const std::string& name) override {
    const KnownRelation* relation = Find(name);
    if (relation != nullptr && !relation->isTable && !relation->text) return FullCatalogText();
    return relation != nullptr ? relation->text : std::nullopt;
  }
  bool HasColumn(const std::string& table, const std::string& column) override {
    return IsRowKey(table, column);
  }
  bool IsRowKey(const std::string& table, const std::string& column) override {
    return !SavedQuery(table) && (column == "ID" || column == "PathID");
  }
  bool ComparesExactly(const std::string& /*table*/, const std::string& column) override {
    return column.ends_with("ID");
  }
  bool IsExactText(const std::string& /*table*/, const std::string& /*column*/) override { return false; }
  bool SortsAlike() const override { return true; }

 private:
  void Add(const char* name, bool isTable, std::vector<KnownColumn> columns) {
    KnownRelation relation;
    relation.name = name;
    relation.isTable = isTable;
    relation.columns = std::move(columns);
    m_relations.push_back(std::move(relation));
  }

  std::vector<KnownRelation> m_relations;
};

}  // namespace

std::vector<ServerStatement> ServerStatements() {
  const auto script = std::make_shared<catalog_test::Script>();
  script->queries["FullCatalog"] = FullCatalogText();
  script->columns = {"File", "Restore"};

  catalog_test::RecordingDatabase database(script);
  const std::string masks[] = {"", "*.doc", "100%_[!a-c^]#\\it's \"new\"", "Ärger"};
  for (const std::string& mask : masks) {
    catalog::BuildRestoreQuery(database, 3, true, mask, "In (\"001\", \"002\")");
    catalog::BuildRestoreQuery(database, 3, false, mask, "= '001'");
    catalog::BuildRestoreQuery(database, 3, true, mask, "");
    if (!mask.empty()) catalog::BuildRestoreQuery(database, 0, true, mask, "");
  }

  Workspace workspace({nullptr, std::make_unique<catalog_test::RecordingBackend>(script), nullptr});
  catalog::ConnectionSettings settings;
  settings.dbType = catalog::kServerCatalog;
  settings.connect = "ODBC;";
  const catalog::CurrentRun run{3, "001"};
  catalog::RestoreMarks marks(workspace, settings, run, [](const Error&, const std::string&) {});
  marks.UpdateByID(-1234);
  marks.UpdateSelectionByFile("a.doc", true, 0, "");
  marks.UpdateSelectionByFileName("C:\\it's.txt", false, 2, "002");
  marks.CancelAll();

  std::vector<ServerStatement> statements;
  for (const auto& [name, text] : script->queries) statements.push_back({name, text});
  for (const std::string& call : script->calls) {
    for (const std::string_view start : {"open 2 ", "open 4 ", "execute 128 "}) {
      if (call.starts_with(start)) statements.push_back({"", call.substr(start.size())});
    }
  }
  for (const char* text : kOfThePanels) statements.push_back({"", text});
  return statements;
}

std::string ForSqlServer(const std::string& text, bool savedQuery, bool mindsCase) {
  static CatalogOnServer relations;
  jet_sql::Statement statement = jet_sql::Parse(text);
  if (auto* select = std::get_if<jet_sql::SelectStatement>(&statement); select != nullptr && !savedQuery) {
    jet_sql::RemoveGroupsOfSingleRows(relations, *select);
  }
  jet_sql::ResolveNames(statement, relations);
  return jet_sql::Print(statement, jet_sql::TsqlDialect(mindsCase),
                        savedQuery ? jet_sql::PrintedAs::kView : jet_sql::PrintedAs::kStatement);
}

}  // namespace kxrestore::engine::testing
