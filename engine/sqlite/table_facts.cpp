#include "engine/sqlite/table_facts.h"

#include "base/error.h"
#include "base/text.h"
#include "engine/jet_sql/reading/view_text.h"

namespace kxrestore::engine::sqlite {
namespace {

// Of a table, not of a saved query.
std::optional<Connection::Column> FindColumn(const Connection& connection, const std::string& table,
                                             const std::string& column) {
  return connection.FindColumn(table, column, true);
}

}  // namespace

std::optional<std::string> SqliteTableFacts::SavedQuery(const std::string& name) {
  Statement find =
      m_connection.Prepare("SELECT sql FROM sqlite_schema WHERE type = 'view' AND name = ?1 COLLATE NOCASE");
  find.Bind(1, std::string_view(name));
  if (!find.Next(name)) return std::nullopt;
  try {
    return jet_sql::QueryTextOfView(find.Text(0));
  } catch (const Error&) {
    return std::nullopt;
  }
}

bool SqliteTableFacts::IsRowKey(const std::string& table, const std::string& column) {
  const auto facts = FindColumn(m_connection, table, column);
  if (!facts || !facts->inKey || !EqualIgnoringCase(facts->type, "INTEGER")) return false;
  Statement count = m_connection.Prepare("SELECT count(*) FROM pragma_table_info(?1) WHERE pk > 0");
  count.Bind(1, std::string_view(table));
  return count.Next(table) && count.Integer(0) == 1;
}

}  // namespace kxrestore::engine::sqlite
