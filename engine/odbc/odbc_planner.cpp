#include "engine/odbc/odbc_planner.h"

#include <algorithm>

#include "base/error.h"
#include "engine/error_numbers.h"
#include "engine/jet_sql/meaning/read_columns.h"
#include "engine/jet_sql/meaning/single_rows.h"
#include "engine/jet_sql/printing/printer.h"
#include "engine/jet_sql/reading/lexer.h"
#include "engine/jet_sql/reading/parser.h"
#include "engine/jet_sql/reading/source_text.h"
#include "engine/odbc/table_facts.h"

namespace kxrestore::engine::odbc {
namespace {

using namespace jet_sql;  // NOLINT: used throughout this file

// Adds the key columns of its tables to a dynaset's statement. Rows without an ORDER BY are ordered by the
// first table's key, because a server may move a row once it is written.
void AddKeys(Session& session, SelectStatement& statement, const std::vector<ResultTable>& tables,
             Plan& plan) {
  SelectCore& core = statement.cores.front();
  const bool isUnordered = statement.orderBy.empty();
  for (const ResultTable& table : tables) {
    PlanTable& planned = plan.tables.emplace_back();
    planned.name = table.relation->name;
    planned.keys = session.Tables().KeyOf(*table.relation);
    for (const std::string& key : planned.keys) {
      SelectItem item;
      item.expression = MakeColumn(table.alias, key);
      item.alias = "kx_key_" + std::to_string(plan.hidden);
      core.items.push_back(std::move(item));
      planned.keyColumns.push_back(plan.hidden++);
      if (isUnordered && &table == &tables.front())
        statement.orderBy.push_back({MakeColumn(table.alias, key)});
    }
  }
}

Value AsKind(const Value& value, ValueKind kind) {
  const ValueView view = ViewOf(value);
  if (kind == ValueKind::kText) return ToText(view);
  if (kind == ValueKind::kBoolean && std::holds_alternative<std::int64_t>(value)) return ToBoolean(view);
  if (kind == ValueKind::kDate) {
    if (const auto date = ToDateTime(view)) return *date;
  }
  return value;
}

}  // namespace

std::vector<Value> ParameterValues(const Plan& plan, const std::vector<Value>& values,
                                   const ServerDialect& dialect) {
  std::vector<Value> parameters;
  for (const std::int64_t number : plan.sql.Parameters()) {
    const auto index = static_cast<std::size_t>(number - 1);
    const ParameterUse use = index < plan.uses.size() ? plan.uses[index] : ParameterUse();
    if (use.isMask) {
      parameters.emplace_back(dialect.Mask(ToText(ViewOf(values[index]))));
    } else {
      parameters.push_back(AsKind(values[index], use.kind));
    }
  }
  return parameters;
}

std::shared_ptr<Plan> MakePlan(Session& session, const Sql& sql, Session::Use use, const ColumnNames& read) {
  Schema& schema = session.Tables();
  const bool reads = use != Session::Use::kAction;
  const auto exists = [&schema](std::string_view name) { return schema.FindEntry(name) != nullptr; };
  jet_sql::Statement statement = ReadSource(sql, reads, exists);
  auto plan = std::make_shared<Plan>();
  auto* select = std::get_if<SelectStatement>(&statement);
  if (use == Session::Use::kSnapshot && select != nullptr) {
    OdbcTableFacts facts(session);
    RemoveGroupsOfSingleRows(facts, *select);
  }
  Resolution resolution = ResolveNames(statement, schema);
  plan->uses = std::move(resolution.parameters);
  plan->keepsPrepared = session.Facts().IsPostgres() || !resolution.readsQueries;
  plan->columns = std::move(resolution.columns);
  plan->columnsKnown = resolution.columnsKnown;
  if (select != nullptr && plan->columnsKnown) LeaveOutUnreadColumns(*select, plan->columns, read);
  if (use == Session::Use::kDynaset && select != nullptr && plan->columnsKnown) {
    AddKeys(session, *select, resolution.tables, *plan);
  }
  plan->sql = PrintWithParameters(statement, session.Dialect());
  return plan;
}

RowUpdate& FindRowUpdate(Session& session, Plan& plan, const std::vector<std::size_t>& columns) {
  for (const auto& update : plan.updates) {
    if (update->columns == columns) return *update;
  }
  const PlanTable& table = plan.tables[plan.columns[columns.front()].table];
  const Dialect& dialect = session.Dialect();
  PrintedSql sql = "UPDATE " + dialect.Identifier(table.name) + " SET ";
  std::int64_t values = 0;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    sql += (i == 0 ? "" : ", ") + dialect.Identifier(plan.columns[columns[i]].baseName) + " = ";
    sql += dialect.Parameter(++values);
  }
  for (std::size_t i = 0; i < table.keys.size(); ++i) {
    sql += (i == 0 ? " WHERE " : " AND ") + dialect.Identifier(table.keys[i]) + " = ";
    sql += dialect.Parameter(++values);
  }
  auto update = std::make_unique<RowUpdate>();
  update->columns = columns;
  update->statement = std::make_unique<OdbcStatement>(session, sql);
  plan.updates.push_back(std::move(update));
  return *plan.updates.back();
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
