#include "engine/odbc/table_facts.h"

#include "base/error.h"
#include "base/text.h"
#include "engine/error_numbers.h"
#include "engine/odbc/odbc_session.h"
#include "engine/odbc/saved_queries.h"

namespace kxrestore::engine::odbc {

using jet_sql::KnownColumn;
using jet_sql::KnownRelation;

std::optional<std::string> OdbcTableFacts::SavedQuery(const std::string& name) {
  const KnownRelation* relation = m_session.Tables().Find(name);
  if (relation == nullptr || relation->isTable) return std::nullopt;
  if (relation->text) return relation->text;
  const Schema::Entry* entry = m_session.Tables().FindEntry(name);
  if (entry == nullptr) return std::nullopt;
  try {
    return ViewText(m_session, *entry);
  } catch (const Error& error) {
    if (m_session.IsLost() || error.Number() == error_number::kCanceled) throw;
    return std::nullopt;  // hidden from this user, or outside the dialect
  }
}

const KnownRelation* OdbcTableFacts::FindTable(const std::string& name) {
  const KnownRelation* relation = m_session.Tables().Find(name);
  return relation != nullptr && relation->isTable ? relation : nullptr;
}

// Null when there is none, or when several columns differ only in case.
const KnownColumn* OdbcTableFacts::FindColumn(const std::string& table, const std::string& column) {
  const KnownRelation* relation = FindTable(table);
  const KnownColumn* found = nullptr;
  if (relation == nullptr) return nullptr;
  for (const KnownColumn& known : relation->columns) {
    if (!EqualIgnoringCase(known.name, column)) continue;
    if (found != nullptr) return nullptr;
    found = &known;
  }
  return found;
}

// Whether other PostgreSQL tables inherit from it.
bool OdbcTableFacts::HasHeirs(const std::string& table) {
  const Schema::Entry* entry = m_session.Tables().FindEntry(table);
  if (entry == nullptr) return false;
  return !m_session
              .Ask(
                  "SELECT 1 FROM pg_catalog.pg_class c JOIN pg_catalog.pg_namespace n ON n.oid = "
                  "c.relnamespace JOIN pg_catalog.pg_inherits i ON i.inhparent = c.oid WHERE c.relname = ? "
                  "AND "
                  "n.nspname = ? AND c.relkind = 'r'",
                  {entry->name, entry->schema})
              .empty();
}

bool OdbcTableFacts::IsRowKey(const std::string& table, const std::string& column) {
  const KnownColumn* key = FindColumn(table, column);
  if (key == nullptr || !key->isWhole) return false;
  if (m_session.Tables().PrimaryKeyOf(*FindTable(table)) != std::vector<std::string>{key->name}) return false;
  // A query also returns the rows of inheriting tables, which the key does not cover.
  return !m_session.Facts().IsPostgres() || !HasHeirs(table);
}

bool OdbcTableFacts::ComparesExactly(const std::string& table, const std::string& column) {
  const KnownColumn* known = FindColumn(table, column);
  return known != nullptr && known->isWhole;
}

// On other servers texts that differ only in trailing blanks may be equal.
bool OdbcTableFacts::MasksKeepGroups() const {
  return m_session.Facts().IsPostgres();
}

}  // namespace kxrestore::engine::odbc
