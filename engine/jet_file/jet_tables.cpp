#include "engine/jet_file/jet_tables.h"

#include <sqlite3.h>

#include <utility>

#include "base/text.h"
#include "engine/error_numbers.h"
#include "engine/jet_sql/printing/dialect.h"
#include "engine/jet_sql/printing/printer.h"
#include "engine/jet_sql/reading/source_text.h"

namespace kxrestore::engine::jet_file {

std::string CreateViewText(std::string_view name, std::string_view sql) {
  const jet_sql::Statement statement = jet_sql::ParseReading(sql);
  const jet_sql::SqliteDialect dialect(true);
  return "CREATE VIEW " + dialect.Identifier(name) + " AS " + jet_sql::Print(statement, dialect);
}

JetTables::JetTables(std::string path, bool exclusive, const std::shared_ptr<sqlite::Waiter>& waiter)
    : m_file(std::move(path)),
      m_marks(m_file, [waiter](bool first) { return waiter->WaitForLock(first); }),
      m_server{m_file, m_marks, [waiter] { return waiter->GoOn(); }},
      m_queries(SavedQueries::Of(m_file.Pages().Path())) {
  if (exclusive) {
    m_marks.Begin();
    m_marks.Keep();
  }
  for (const FileQuery& query : m_file.Queries()) {
    const std::string key = FoldCase(query.name);
    try {
      if (query.problem) throw *query.problem;
      m_ownViews[key] = CreateViewText(query.name, query.text);
    } catch (const Error& problem) {
      m_queryProblems.emplace(key, problem);
    }
  }
}

void JetTables::Attach(sqlite3* connection) {
  m_connection = connection;
  AttachTables(connection, m_server);
  // Recreates views that were rolled back together with other changes.
  sqlite3_rollback_hook(
      connection, [](void* self) { static_cast<JetTables*>(self)->m_version = 0; }, this);
  CatchUp();
}

void JetTables::RaiseFailure(const char* message) {
  if (m_server.failure) std::rethrow_exception(std::exchange(m_server.failure, nullptr));
  std::string_view name = message;
  constexpr std::string_view kMissing = "no such table: ";
  if (!name.starts_with(kMissing)) return;
  name.remove_prefix(kMissing.size());
  if (name.starts_with("main.")) name.remove_prefix(5);
  if (const Error* problem = m_file.Problem(name)) throw *problem;
  const auto found = m_queryProblems.find(FoldCase(name));
  if (found != m_queryProblems.end() && !m_queries.Find(name)) throw found->second;
}

std::map<std::string, std::string> JetTables::WantedViews() {
  std::map<std::string, std::string> wanted = m_ownViews;
  for (const auto& [key, query] : m_queries.All()) {
    if (query.createView) {
      wanted[key] = *query.createView;
    } else {
      wanted.erase(key);
    }
  }
  return wanted;
}

void JetTables::CatchUp() {
  const std::uint64_t version = m_queries.Version();
  std::map<std::string, std::string> wanted = WantedViews();
  const jet_sql::SqliteDialect dialect(true);
  std::string script;
  sqlite3_stmt* views = nullptr;
  sqlite3_prepare_v2(m_connection, "SELECT name, sql FROM sqlite_schema WHERE type = 'view'", -1, &views,
                     nullptr);
  while (views != nullptr && sqlite3_step(views) == SQLITE_ROW) {
    const std::string name = reinterpret_cast<const char*>(sqlite3_column_text(views, 0));
    const std::string sql = reinterpret_cast<const char*>(sqlite3_column_text(views, 1));
    const auto found = wanted.find(FoldCase(name));
    if (found != wanted.end() && found->second == sql) {
      wanted.erase(found);
    } else {
      script += "DROP VIEW " + dialect.Identifier(name) + ";";
    }
  }
  sqlite3_finalize(views);
  for (const auto& [key, sql] : wanted) script += sql + ";";
  if (!script.empty() && sqlite3_exec(m_connection, script.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
    Raise(error_number::kInvalidOperation, "Invalid operation on the saved queries of '" +
                                               m_file.Pages().Path() + "' (" + sqlite3_errmsg(m_connection) +
                                               ").");
  }
  m_version = version;
}

void JetTables::Refresh() {
  m_server.failure = nullptr;
  if (sqlite3_get_autocommit(m_connection) != 0 && m_file.Refresh()) m_server.Forget();
}

}  // namespace kxrestore::engine::jet_file
