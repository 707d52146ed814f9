#include "engine/odbc/odbc_schema.h"

#include <algorithm>

#include "base/text.h"
#include "engine/odbc/odbc_session.h"
#include "engine/odbc/saved_queries.h"

namespace kxrestore::engine::odbc {
namespace {

// A name as a pattern argument of the driver's catalog functions.
std::string EscapedPattern(const std::string& name, const std::string& escape) {
  std::string pattern;
  for (const char c : name) {
    if (c == '_' || c == '%') pattern += escape;
    pattern += c;
  }
  return pattern;
}

bool IsOfTheServer(std::string_view schema) {
  for (const char* name : {"pg_catalog", "information_schema", "pg_toast", "sys"}) {
    if (EqualIgnoringCase(schema, name)) return true;
  }
  return false;
}

}  // namespace

const jet_sql::KnownRelation* Schema::Find(std::string_view name) {
  std::string key(name);
  const auto known = m_relations.find(key);
  if (known != m_relations.end()) return known->second.get();
  std::unique_ptr<jet_sql::KnownRelation> relation;
  const auto own = m_texts->byName.find(FoldCase(name));
  if (own != m_texts->byName.end()) {
    relation = std::make_unique<jet_sql::KnownRelation>();
    relation->name = name;
    relation->text = own->second;
  } else if (const Entry* entry = FindEntry(name)) {
    relation = ReadRelation(*entry);
    const StoredText* stored = entry->isTable ? nullptr : FindStoredText(entry->name);
    if (stored != nullptr && (m_byText || !stored->bound)) relation->text = stored->text;
  } else {
    return nullptr;
  }
  return m_relations.emplace(std::move(key), std::move(relation)).first->second.get();
}

const Schema::Entry* Schema::FindEntry(std::string_view name, bool fresh) {
  const bool justRead = fresh || !m_entriesRead;
  if (justRead) ReadEntries();
  const std::string folded = FoldCase(name);
  for (bool again = !justRead;; again = false) {
    const auto [first, last] = m_entries.equal_range(folded);
    const auto better = [name](const auto& a, const auto& b) {
      return a.second.name != name && b.second.name == name;
    };
    if (first != last) return &std::max_element(first, last, better)->second;
    if (!again) return nullptr;
    ReadEntries();
  }
}

void Schema::ReadEntries() {
  m_entries.clear();
  m_stored.reset();
  const std::string& own = m_session.Facts().schema;
  const auto list = [types = WideText("TABLE,VIEW")](StatementHandle& statement) mutable {
    return statement.Tables(types);
  };
  OdbcStatement statement(m_session, "tables");
  m_session.ReadCatalog(statement, list);
  while (statement.Next()) {
    Entry entry{ToText(statement.Value(2)), ToText(statement.Value(1)),
                ToText(statement.Value(3)) == "TABLE"};
    if (IsOfTheServer(entry.schema) || (!own.empty() && !entry.schema.empty() && entry.schema != own))
      continue;
    m_entries.emplace(FoldCase(entry.name), std::move(entry));
  }
  m_entriesRead = true;
}

const Schema::StoredText* Schema::FindStoredText(std::string_view viewName) {
  if (!m_stored) m_stored = ReadStoredTexts(m_session);
  const auto found = m_stored->find(std::string(viewName));
  return found == m_stored->end() ? nullptr : &found->second;
}

std::unique_ptr<jet_sql::KnownRelation> Schema::ReadRelation(const Entry& entry) const {
  auto relation = std::make_unique<jet_sql::KnownRelation>();
  relation->name = entry.name;
  relation->isTable = entry.isTable;
  const std::string& escape = m_session.Facts().patternEscape;
  const auto list = [schema = EscapedPattern(entry.schema, escape),
                     table = EscapedPattern(entry.name, escape)](StatementHandle& statement) {
    return statement.Columns(schema, table);
  };
  OdbcStatement statement(m_session, entry.name);
  m_session.ReadCatalog(statement, list);
  while (statement.Next()) {
    if (ToText(statement.Value(2)) != entry.name) continue;
    const auto type = static_cast<SQLSMALLINT>(ToInteger(statement.Value(4)));
    const bool isWhole =
        type == SQL_INTEGER || type == SQL_SMALLINT || type == SQL_TINYINT || type == SQL_BIGINT;
    relation->columns.push_back(
        {ToText(statement.Value(3)), KindOfType(type, ToText(statement.Value(5))), isWhole});
  }
  return relation;
}

bool Schema::IsFolded() {
  if (!m_session.Facts().foldsToLower) return false;
  if (!m_entriesRead) ReadEntries();
  const auto folded = [](const auto& entry) { return entry.first == entry.second.name; };
  return !m_entries.empty() && std::all_of(m_entries.begin(), m_entries.end(), folded);
}

std::vector<std::string> Schema::PrimaryKeyOf(const jet_sql::KnownRelation& table) {
  std::vector<std::string> keys;
  const Entry* entry = FindEntry(table.name);
  const auto list = [schema = entry == nullptr ? std::string() : entry->schema, name = table.name](
                        StatementHandle& statement) { return statement.PrimaryKeys(schema, name); };
  m_session.FetchPiecewise(false);
  OdbcStatement statement(m_session, table.name);
  const Outcome outcome = statement.ExecuteCatalog(list);
  if (outcome.Failed()) {
    const std::string state = outcome.Diagnostics().empty() ? "" : outcome.Diagnostics().front().state;
    if (state == "IM001" || state == "HYC00") return keys;  // the driver lacks the function
    m_session.RaiseFailure(outcome, table.name);
  }
  while (statement.Next()) keys.push_back(ToText(statement.Value(3)));
  return keys;
}

std::vector<std::string> Schema::KeyOf(const jet_sql::KnownRelation& table) {
  std::vector<std::string> keys = PrimaryKeyOf(table);
  std::erase_if(keys, [&table](const std::string& key) {
    const auto same = [&key](const jet_sql::KnownColumn& column) { return column.name == key; };
    return std::none_of(table.columns.begin(), table.columns.end(), same);
  });
  for (const jet_sql::KnownColumn& column : table.columns) {
    if (keys.empty() && EqualIgnoringCase(column.name, "ID")) keys.push_back(column.name);
  }
  return keys;
}

void Schema::ReadQueriesByText(bool byText) {
  m_byText = byText;
  m_relations.clear();
}

void Schema::Forget() {
  m_entriesRead = false;
  m_entries.clear();
  m_stored.reset();
  m_relations.clear();
}

}  // namespace kxrestore::engine::odbc
