#include "tests/engine/server_statements.h"

#include <algorithm>
#include <map>
#include <sstream>

#include "base/text.h"
#include "catalog/listings.h"
#include "catalog/restore_marks.h"
#include "catalog/restore_query.h"
#include "catalog/type_census.h"
#include "engine/jet_sql/meaning/name_resolver.h"
#include "engine/jet_sql/meaning/read_columns.h"
#include "engine/jet_sql/meaning/single_rows.h"
#include "engine/jet_sql/printing/printer.h"
#include "engine/jet_sql/printing/server_dialects.h"
#include "engine/jet_sql/reading/parser.h"
#include "tests/catalog/recording_database.h"
#include "tests/engine/cases.h"

namespace kxrestore::engine::testing {
namespace {

using catalog_test::RecordingDatabase;
using catalog_test::Script;
using jet_sql::KnownColumn;
using jet_sql::KnownRelation;
using jet_sql::ValueKind;

// Reads a list of "name:kind", separated by blanks.
std::vector<KnownColumn> Columns(const std::string& list) {
  static const std::map<std::string, ValueKind> kinds = {{"number", ValueKind::kNumber},
                                                         {"text", ValueKind::kText},
                                                         {"date", ValueKind::kDate},
                                                         {"flag", ValueKind::kBoolean}};
  std::vector<KnownColumn> columns;
  std::istringstream words(list);
  for (std::string name, kind; std::getline(words, name, ':') && words >> kind; words >> std::ws) {
    columns.push_back({name, kinds.at(kind)});
  }
  return columns;
}

constexpr const char* kCatalogColumns =
    "ID:number DateStamp:date SetNameID:number Extension:text Filename:text File:text LongPathID:number "
    "StoreName:text StoreMethod:number Plugin:text Restore:flag OrigSize:number Status:number "
    "Attributes:number SubFolder:text EncryptMethod:number OrigName:text";

std::string FullCatalogText() {
  std::string text = "SELECT ";
  for (const KnownColumn& column : Columns(kCatalogColumns)) {
    text += "Catalog." + column.name + " AS " + column.name + ", ";
  }
  return text +
         "SetNames.Name AS SetName FROM SetNames RIGHT JOIN [Catalog] ON SetNames.ID = Catalog.SetNameID;";
}

class CatalogOnServer final : public jet_sql::Relations, public jet_sql::TableFacts {
 public:
  CatalogOnServer() {
    for (const auto& [name, columns] :
         {std::pair("Catalog", kCatalogColumns),
          {"LongPaths", "PathID:number LongPath:text"},
          {"SetNames", "ID:number Name:text"},
          {"BackupAudit", "SetNameID:number DateStamp:date Extension:text Permanent:flag Status:number"},
          {"ArchiveHeader", "Title:text"}}) {
      m_relations.push_back({name, true, Columns(columns), {}});
    }
    m_relations.push_back(
        {"FullCatalog", false, Columns(std::string(kCatalogColumns) + " SetName:text"), {}});
    m_relations.push_back({"Circle", false, {}, "SELECT ID FROM Circle;"});
    // The queries that this component saves have only a text.
    for (const auto& [name, text] : ServerStatements()) {
      if (!name.empty() && name != "FullCatalog") m_relations.push_back({name, false, {}, text});
    }
  }

  const KnownRelation* Find(std::string_view name) override {
    const auto found = std::ranges::find_if(
        m_relations, [&](const KnownRelation& relation) { return EqualIgnoringCase(relation.name, name); });
    return found == m_relations.end() ? nullptr : &*found;
  }
  std::optional<std::string> SavedQuery(const std::string& name) override {
    const KnownRelation* relation = Find(name);
    if (relation == nullptr || relation->isTable) return std::nullopt;
    return relation->text ? relation->text : FullCatalogText();
  }
  bool IsRowKey(const std::string& table, const std::string& column) override {
    return !SavedQuery(table) && (column == "ID" || column == "PathID");
  }
  bool ComparesExactly(const std::string& /*table*/, const std::string& column) override {
    return column.ends_with("ID");
  }
  bool MasksKeepGroups() const override { return false; }

 private:
  std::vector<KnownRelation> m_relations;
};

// The statement that a function opens on a database.
template <class Open>
std::string StatementOf(Open open) {
  const auto script = std::make_shared<Script>();
  RecordingDatabase database(script);
  static_cast<void>(open(database));
  return script->calls.back().substr(std::string_view("open 4 ").size());
}

}  // namespace

std::vector<PanelStatement> PanelStatements() {
  const std::map<std::string, std::string> texts = {
      {"runs", StatementOf(catalog::OpenRuns)},
      {"a run",
       "SELECT Catalog.ID, Catalog.DateStamp, Catalog.SetNameID, Catalog.Extension, Catalog.Filename, "
       "Catalog.File, Catalog.LongPathID, LongPaths.LongPath, Catalog.StoreName, Catalog.StoreMethod, "
       "Catalog.Plugin, IIf(IsNull([LongPath]),[filename],[longpath]) AS RestoreFile FROM LongPaths RIGHT "
       "JOIN [Catalog] ON LongPaths.PathID = Catalog.LongPathID WHERE (((Catalog.SetNameID)=1) AND "
       "((Catalog.Extension)='002') AND ((Catalog.Status)=2));"},
      {"selections", StatementOf([](Database& database) { return catalog::OpenSelections(database, {}); })},
      {"types", StatementOf(catalog::OpenTypes)}};
  std::vector<PanelStatement> statements;
  for (const auto& [panel, rows] : ReadCases("queries.txt", "panels")) {
    statements.push_back({texts.at(panel), rows});
  }
  return statements;
}

std::vector<ServerStatement> ServerStatements() {
  const auto script = std::make_shared<Script>();
  script->queries["FullCatalog"] = FullCatalogText();
  script->columns = {"File", "Restore"};

  RecordingDatabase database(script);
  for (const char* mask : {"", "*.doc", "100%_[!a-c^]#\\it's \"new\"", "Ärger"}) {
    static_cast<void>(catalog::BuildRestoreQuery(database, 3, true, mask, "In (\"001\", \"002\")"));
    static_cast<void>(catalog::BuildRestoreQuery(database, 3, false, mask, "= '001'"));
    static_cast<void>(catalog::BuildRestoreQuery(database, 3, true, mask, ""));
    if (*mask != 0) static_cast<void>(catalog::BuildRestoreQuery(database, 0, true, mask, ""));
  }

  Workspace workspace({nullptr, std::make_unique<catalog_test::RecordingBackend>(script), nullptr});
  const catalog::ConnectionSettings settings{.DBType = catalog::kServerCatalog, .connect = "ODBC;"};
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
  for (const char* text :
       {"SELECT * FROM ArchiveHeader",
        "INSERT INTO SetNames (ID, Name) VALUES (9, 'it''s new'), (10, 'Büro')",
        "DELETE FROM BackupAudit WHERE SetNameID = 9 AND DateStamp < #11/16/2026 2:25:30 PM#"}) {
    statements.push_back({"", text});
  }
  return statements;
}

std::string ForServer(const jet_sql::Dialect& dialect, const std::string& text, bool savedQuery,
                      const ColumnNames& read) {
  static CatalogOnServer relations;
  jet_sql::Statement statement = jet_sql::Parse(text);
  auto* select = std::get_if<jet_sql::SelectStatement>(&statement);
  if (select != nullptr && !savedQuery) jet_sql::RemoveGroupsOfSingleRows(relations, *select);
  jet_sql::Resolution resolution = jet_sql::ResolveNames(statement, relations);
  if (select != nullptr && resolution.columnsKnown) {
    jet_sql::LeaveOutUnreadColumns(*select, resolution.columns, read);
  }
  return jet_sql::Print(statement, dialect,
                        savedQuery ? jet_sql::PrintedAs::kView : jet_sql::PrintedAs::kStatement);
}

std::string ForSqlServer(const std::string& text, bool savedQuery, bool mindsCase, const ColumnNames& read) {
  return ForServer(jet_sql::TsqlDialect(mindsCase), text, savedQuery, read);
}

}  // namespace kxrestore::engine::testing
