#include "engine/odbc/odbc_planner.h"

#include <algorithm>

#include "base/error.h"
#include "base/text.h"
#include "engine/error_numbers.h"
#include "engine/jet_sql/meaning/read_columns.h"
#include "engine/jet_sql/meaning/single_rows.h"
#include "engine/jet_sql/printing/printer.h"
#include "engine/jet_sql/reading/lexer.h"
#include "engine/jet_sql/reading/parser.h"
#include "engine/jet_sql/reading/source_text.h"
#include "engine/odbc/odbc_session.h"
#include "engine/odbc/saved_queries.h"

namespace kxrestore::engine::odbc {
namespace {

using namespace jet_sql;  // NOLINT: used throughout this file

class OdbcTableFacts final : public TableFacts {
 public:
  explicit OdbcTableFacts(Session& session) : m_session(session) {}

  std::optional<std::string> SavedQuery(const std::string& name) override {
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

  bool IsRowKey(const std::string& table, const std::string& column) override {
    const KnownColumn* key = FindColumn(table, column);
    if (key == nullptr || !key->isWhole) return false;
    if (m_session.Tables().PrimaryKeyOf(*FindTable(table)) != std::vector<std::string>{key->name})
      return false;
    // A query also returns the rows of inheriting tables, which the key does not cover.
    return !m_session.Facts().IsPostgres() || !HasInheritingTables(table);
  }

  bool ComparesExactly(const std::string& table, const std::string& column) override {
    const KnownColumn* known = FindColumn(table, column);
    return known != nullptr && known->isWhole;
  }

  // On other servers texts that differ only in trailing blanks may be equal.
  bool MasksKeepGroups() const override { return m_session.Facts().IsPostgres(); }

 private:
  const KnownRelation* FindTable(const std::string& name) {
    const KnownRelation* relation = m_session.Tables().Find(name);
    return relation != nullptr && relation->isTable ? relation : nullptr;
  }

  // Null when there is none, or when several columns differ only in case.
  const KnownColumn* FindColumn(const std::string& table, const std::string& column) {
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
  bool HasInheritingTables(const std::string& table) {
    const Schema::Entry* entry = m_session.Tables().FindEntry(table);
    if (entry == nullptr) return false;
    return !m_session
                .Ask(
                    "SELECT 1 FROM pg_catalog.pg_class c JOIN pg_catalog.pg_namespace n ON n.oid = "
                    "c.relnamespace JOIN pg_catalog.pg_inherits i ON i.inhparent = c.oid WHERE c.relname = "
                    "? AND n.nspname = ? AND c.relkind = 'r'",
                    {entry->name, entry->schema})
                .empty();
  }

  Session& m_session;
};

// Adds the key columns of its tables to a dynaset's statement. Rows without an ORDER BY are ordered by the
// first table's key, because a server may move a row once it is written.
void AddKeys(Session& session, SelectStatement& statement, const std::vector<ResultTable>& tables,
             Plan& plan) {
  for (const ResultTable& table : tables) {
    plan.tables.push_back({table.relation->name, table.alias, session.Tables().KeyOf(*table.relation), {}});
  }
  AddKeyColumns(statement, plan);
  if (!statement.orderBy.empty() || plan.tables.empty()) return;
  const PlanTable& first = plan.tables.front();
  for (const std::string& key : first.keys) statement.orderBy.push_back({MakeColumn(first.alias, key)});
}

}  // namespace

Value ForColumn(const Value& value, ValueKind kind) {
  const ValueView view = ViewOf(value);
  if (IsNull(view)) return value;
  if (kind == ValueKind::kBoolean) return ToBoolean(view);
  if (kind == ValueKind::kText) return ToText(view);
  if (kind == ValueKind::kNumber && std::holds_alternative<bool>(value)) return ToInteger(view);
  const auto date = kind == ValueKind::kDate ? ToDateTime(view) : std::nullopt;
  return date ? Value(*date) : value;
}

std::vector<Value> ParameterValues(const Plan& plan, const std::vector<Value>& values,
                                   const Dialect& dialect) {
  std::vector<Value> parameters;
  for (const std::int64_t number : plan.sql.Parameters()) {
    const auto index = static_cast<std::size_t>(number - 1);
    const ParameterUse use = index < plan.uses.size() ? plan.uses[index] : ParameterUse();
    if (use.isMask) {
      parameters.emplace_back(dialect.Mask(ToText(ViewOf(values[index]))));
    } else {
      parameters.push_back(ForColumn(values[index], use.kind));
    }
  }
  return parameters;
}

std::shared_ptr<Plan> MakePlan(Session& session, const Sql& sql, StatementUse use, const ColumnNames& read) {
  Schema& schema = session.Tables();
  const bool reads = use != StatementUse::kAction;
  const auto exists = [&schema](std::string_view name) { return schema.FindEntry(name) != nullptr; };
  jet_sql::Statement statement = ReadSource(sql, reads, exists);
  auto plan = std::make_shared<Plan>();
  auto* select = std::get_if<SelectStatement>(&statement);
  if (use == StatementUse::kSnapshot && select != nullptr) {
    OdbcTableFacts facts(session);
    RemoveGroupsOfSingleRows(facts, *select);
  }
  Resolution resolution = ResolveNames(statement, schema);
  plan->uses = std::move(resolution.parameters);
  plan->keepsPrepared = session.Facts().IsPostgres() || !resolution.readsQueries;
  plan->columns = std::move(resolution.columns);
  plan->columnsKnown = resolution.columnsKnown;
  if (select != nullptr && plan->columnsKnown) LeaveOutUnreadColumns(*select, plan->columns, read);
  if (use == StatementUse::kDynaset && select != nullptr && plan->columnsKnown) {
    AddKeys(session, *select, resolution.tables, *plan);
  }
  plan->sql = PrintWithParameters(statement, session.Dialect());
  return plan;
}

ViewBody TranslateSavedQuery(Session& session, std::string_view text) {
  jet_sql::Statement statement = jet_sql::ParseReading(text);
  ViewBody body;
  for (const SelectItem& item : std::get<SelectStatement>(statement).cores.front().items) {
    if (!item.expression) {
      body.columns.clear();
      break;
    }
    body.columns.push_back(ColumnName(item, body.columns.size()));
  }
  struct ByText {
    explicit ByText(Schema& all) : schema(all) { schema.ReadQueriesByText(true); }
    ~ByText() { schema.ReadQueriesByText(false); }
    Schema& schema;
  } const byText(session.Tables());
  try {
    ResolveNames(statement, session.Tables());
    body.sql = Print(statement, session.Dialect(), jet_sql::PrintedAs::kView);
  } catch (const Error& error) {
    // Tables or columns that it refers to may be created later; until then the query returns no rows.
    if (error.Number() != error_number::kParameterMissing) throw;
  }
  return body;
}

}  // namespace kxrestore::engine::odbc
