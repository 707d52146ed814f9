#include "tests/engine/server_statements.h"

#include "base/text.h"
#include "catalog/restore_marks.h"
#include "catalog/restore_query.h"
#include "engine/jet_sql/meaning/name_resolver.h"
#include "engine/jet_sql/meaning/read_columns.h"
#include "engine/jet_sql/meaning/single_rows.h"
#include "engine/jet_sql/printing/printer.h"
#include "engine/jet_sql/printing/tsql_dialect.h"
#include "engine/jet_sql/reading/parser.h"
#include "tests/catalog/recording_database.h"

namespace kxrestore::engine::testing {
namespace {

using jet_sql::KnownColumn;
using jet_sql::KnownRelation;
using jet_sql::ValueKind;

// Of names with a letter for the kind behind each: number, text, date, Boolean.
std::vector<KnownColumn> Columns(std::string_view list) {
  std::vector<KnownColumn> columns;
  for (std::size_t start = 0; start < list.size();) {
    const std::size_t end = std::min(list.find(' ', start), list.size());
    const char kind = list[end - 1];
    columns.push_back({std::string(list.substr(start, end - start - 2)), kind == 'n'   ? ValueKind::kNumber
                                                                         : kind == 't' ? ValueKind::kText
                                                                         : kind == 'd'
                                                                             ? ValueKind::kDate
                                                                             : ValueKind::kBoolean});
    start = end + 1;
  }
  return columns;
}

const std::vector<KnownColumn> kCatalogColumns = Columns(
    "ID:n DateStamp:d SetNameID:n Extension:t Filename:t File:t LongPathID:n StoreName:t StoreMethod:n "
    "Plugin:t Restore:b OrigSize:n Status:n Attributes:n SubFolder:t EncryptMethod:n OrigName:t");

std::string FullCatalogText() {
  std::string text = "SELECT ";
  for (const KnownColumn& column : kCatalogColumns)
    text += "Catalog." + column.name + " AS " + column.name + ", ";
  return text +
         "SetNames.Name AS SetName FROM SetNames RIGHT JOIN [Catalog] ON SetNames.ID = Catalog.SetNameID;";
}

class CatalogOnServer final : public jet_sql::Relations, public jet_sql::TableFacts {
 public:
  CatalogOnServer() {
    Add("Catalog", true, kCatalogColumns);
    Add("LongPaths", true, Columns("PathID:n LongPath:t"));
    Add("SetNames", true, Columns("ID:n Name:t"));
    Add("BackupAudit", true, Columns("SetNameID:n DateStamp:d Extension:t Permanent:b Status:n"));
    Add("ArchiveHeader", true, Columns("Title:t"));
    std::vector<KnownColumn> listed = kCatalogColumns;
    listed.push_back({"SetName", ValueKind::kText});
    Add("FullCatalog", false, listed);
    // What this component has saved is read by its text.
    for (const auto& [name, text] : ServerStatements()) {
      if (name.empty() || name == "FullCatalog") continue;
      Add(name, false, {}, text);
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
  bool IsRowKey(const std::string& table, const std::string& column) override {
    return !SavedQuery(table) && (column == "ID" || column == "PathID");
  }
  bool ComparesExactly(const std::string& /*table*/, const std::string& column) override {
    return column.ends_with("ID");
  }
  bool MasksKeepGroups() const override { return false; }

 private:
  void Add(const std::string& name, bool isTable, std::vector<KnownColumn> columns,
           std::optional<std::string> text = {}) {
    m_relations.push_back({name, isTable, std::move(columns), std::move(text)});
  }

  std::vector<KnownRelation> m_relations;
};

}  // namespace

std::vector<PanelStatement> PanelStatements() {
  const std::string longName = "C:\\Documents and Settings\\user\\long name.doc";
  return {{"SELECT SetNames.Name, BackupAudit.DateStamp, BackupAudit.SetNameID, BackupAudit.Extension, "
           "BackupAudit.Permanent, BackupAudit.Status FROM SetNames INNER JOIN BackupAudit ON SetNames.ID = "
           "BackupAudit.SetNameID Where (((BackupAudit.Status) = 6)) ORDER BY SetNames.Name, "
           "BackupAudit.DateStamp DESC; ",
           {"Archive|2026-03-05 00:00:00|3|x01|False|6", "büro|2026-03-01 00:00:00|2|001|NULL|6",
            "Office|2026-02-01 08:00:00|1|002|False|6", "Office|2026-01-01 08:00:00|1|001|True|6"}},
          {"SELECT Catalog.ID, Catalog.DateStamp, Catalog.SetNameID, Catalog.Extension, Catalog.Filename, "
           "Catalog.File, Catalog.LongPathID, LongPaths.LongPath, Catalog.StoreName, Catalog.StoreMethod, "
           "Catalog.Plugin, IIf(IsNull([LongPath]),[filename],[longpath]) AS RestoreFile FROM LongPaths "
           "RIGHT JOIN [Catalog] ON LongPaths.PathID = Catalog.LongPathID WHERE (((Catalog.SetNameID)=1) AND "
           "((Catalog.Extension)='002') AND ((Catalog.Status)=2));",
           {"2|2026-02-01 08:00:00|1|002|C:\\a.doc|a.doc|NULL|NULL|s2|1||C:\\a.doc",
            "3|2026-02-01 08:00:00|1|002|C:\\DOCUME~1\\L.DOC|l.doc|7|" + longName + "|s3|1||" + longName,
            "4|2026-02-01 08:00:00|1|002|C:\\it's.txt|it's.txt|NULL|NULL|s4|1|NULL|C:\\it's.txt",
            "7|2026-02-01 08:00:00|1|002|mail|mail|NULL|NULL|s7|1|Exchange Server|mail"}},
          {"SELECT Catalog.SetNameID, Catalog.OrigSize, Catalog.DateStamp, Catalog.Extension, "
           "Catalog.Filename, Catalog.File, Catalog.Restore, Catalog.StoreMethod, Catalog.Plugin, "
           "Catalog.StoreName, IIf(IsNull([LongPath]),[filename],[longpath]) AS RestoreFile, SetNames.Name "
           "FROM SetNames RIGHT JOIN (LongPaths RIGHT JOIN [Catalog] ON LongPaths.PathID = "
           "Catalog.LongPathID) ON SetNames.ID = Catalog.SetNameID WHERE (((Catalog.Restore)=True));",
           {"1|13|2026-02-01 08:00:00|002|C:\\it's.txt|it's.txt|True|1|NULL|s4|C:\\it's.txt|Office",
            "2|NULL|2026-03-01 00:00:00|001|D:\\Ärger.txt|Ärger.txt|True|1||s5|D:\\Ärger.txt|büro"}},
          {"SELECT Mid([OrigName],InStrRev([OrigName],\".\")) AS FileType, Count(*) AS Files FROM [Catalog] "
           "WHERE (((Catalog.Status)=2) AND ((Catalog.OrigName) Like \"*.*\")) GROUP BY "
           "Mid([OrigName],InStrRev([OrigName],\".\"));",
           {".doc|3", ".txt|2"}},
          {"SELECT * FROM ArchiveHeader", {}}};
}

std::vector<ServerStatement> ServerStatements() {
  const auto script = std::make_shared<catalog_test::Script>();
  script->queries["FullCatalog"] = FullCatalogText();
  script->columns = {"File", "Restore"};

  catalog_test::RecordingDatabase database(script);
  const std::string masks[] = {"", "*.doc", "100%_[!a-c^]#\\it's \"new\"", "Ärger"};
  for (const std::string& mask : masks) {
    static_cast<void>(catalog::BuildRestoreQuery(database, 3, true, mask, "In (\"001\", \"002\")"));
    static_cast<void>(catalog::BuildRestoreQuery(database, 3, false, mask, "= '001'"));
    static_cast<void>(catalog::BuildRestoreQuery(database, 3, true, mask, ""));
    if (!mask.empty()) static_cast<void>(catalog::BuildRestoreQuery(database, 0, true, mask, ""));
  }

  Workspace workspace({nullptr, std::make_unique<catalog_test::RecordingBackend>(script), nullptr});
  catalog::ConnectionSettings settings;
  settings.DBType = catalog::kServerCatalog;
  settings.connect = "ODBC;";
  const catalog::CurrentRun run{3, "001"};
  catalog::RestoreMarks marks(workspace, settings, run, [](const Error&, const std::string&) {});
  (void)marks.UpdateByID(-1234);
  (void)marks.UpdateSelectionByFile("a.doc", true, 0, "");
  (void)marks.UpdateSelectionByFileName("C:\\it's.txt", false, 2, "002");
  (void)marks.CancelAll();

  std::vector<ServerStatement> statements;
  for (const auto& [name, text] : script->queries) statements.push_back({name, text});
  for (const std::string& call : script->calls) {
    for (const std::string_view start : {"open 2 ", "open 4 ", "execute 128 "}) {
      if (call.starts_with(start)) statements.push_back({"", call.substr(start.size())});
    }
  }
  for (const auto& [text, rows] : PanelStatements()) statements.push_back({"", text});
  statements.push_back({"", "INSERT INTO SetNames (ID, Name) VALUES (9, 'it''s new'), (10, 'Büro')"});
  statements.push_back(
      {"", "DELETE FROM BackupAudit WHERE SetNameID = 9 AND DateStamp < #11/16/2026 2:25:30 PM#"});
  return statements;
}

std::string ForSqlServer(const std::string& text, bool savedQuery, bool mindsCase, const ColumnNames& read) {
  static CatalogOnServer relations;
  jet_sql::Statement statement = jet_sql::Parse(text);
  auto* select = std::get_if<jet_sql::SelectStatement>(&statement);
  if (select != nullptr && !savedQuery) jet_sql::RemoveGroupsOfSingleRows(relations, *select);
  jet_sql::Resolution resolution = jet_sql::ResolveNames(statement, relations);
  if (select != nullptr && resolution.columnsKnown) {
    jet_sql::LeaveOutUnreadColumns(*select, resolution.columns, read);
  }
  return jet_sql::Print(statement, jet_sql::TsqlDialect(mindsCase),
                        savedQuery ? jet_sql::PrintedAs::kView : jet_sql::PrintedAs::kStatement);
}

}  // namespace kxrestore::engine::testing
