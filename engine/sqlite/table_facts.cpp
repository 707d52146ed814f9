#include "engine/sqlite/table_facts.h"

#include "base/error.h"
#include "base/text.h"
#include "engine/jet_sql/reading/view_text.h"

namespace kxrestore::engine::sqlite {
namespace {

struct ColumnFacts {
  std::string type;
  bool inKey = false;
};

// Of a table, not of a saved query.
std::optional<ColumnFacts> FindColumn(const Session& session, const std::string& table,
                                      const std::string& column) {
  const char* type = nullptr;
  int inKey = 0;
  if (sqlite3_table_column_metadata(session.Connection(), "main", table.c_str(), column.c_str(), &type,
                                    nullptr, nullptr, &inKey, nullptr) != SQLITE_OK) {
    return std::nullopt;
  }
  return ColumnFacts{type == nullptr ? "" : type, inKey != 0};
}

}  // namespace

std::optional<std::string> SqliteTableFacts::SavedQuery(const std::string& name) {
  const Statement find =
      m_session.Prepare("SELECT sql FROM sqlite_schema WHERE type = 'view' AND name = ?1 COLLATE NOCASE");
  sqlite3_bind_text(find.get(), 1, name.c_str(), -1, SQLITE_STATIC);
  if (sqlite3_step(find.get()) != SQLITE_ROW) return std::nullopt;
  const auto* sql = reinterpret_cast<const char*>(sqlite3_column_text(find.get(), 0));
  if (sql == nullptr) return std::nullopt;
  try {
    return jet_sql::QueryTextOfView(sql);
  } catch (const Error&) {
    return std::nullopt;
  }
}

bool SqliteTableFacts::IsRowKey(const std::string& table, const std::string& column) {
  const auto facts = FindColumn(m_session, table, column);
  if (!facts || !facts->inKey || !EqualIgnoringCase(facts->type, "INTEGER")) return false;
  const Statement count = m_session.Prepare("SELECT count(*) FROM pragma_table_info(?1) WHERE pk > 0");
  sqlite3_bind_text(count.get(), 1, table.c_str(), -1, SQLITE_STATIC);
  return sqlite3_step(count.get()) == SQLITE_ROW && sqlite3_column_int(count.get(), 0) == 1;
}

}  // namespace kxrestore::engine::sqlite
