#include "engine/sqlite/planner.h"

#include <algorithm>

#include "base/error.h"
#include "base/text.h"
#include "engine/error_numbers.h"
#include "engine/jet_sql/meaning/read_columns.h"
#include "engine/jet_sql/meaning/saved_query.h"
#include "engine/jet_sql/meaning/single_rows.h"
#include "engine/jet_sql/printing/dialect.h"
#include "engine/jet_sql/printing/printer.h"
#include "engine/jet_sql/reading/lexer.h"
#include "engine/jet_sql/reading/parser.h"
#include "engine/jet_sql/reading/source_text.h"
#include "engine/jet_sql/reading/view_text.h"

namespace kxrestore::engine::sqlite {
namespace {

using namespace jet_sql;  // NOLINT: the planner speaks of little else

// The kind of a column by its declared type, which is null for a calculated one. Only Booleans and dates need
// conversion.
ValueKind KindOf(const char* declared) {
  if (declared == nullptr) return ValueKind::kUnknown;
  for (const char* type : {"BOOLEAN", "BOOL", "BIT", "YESNO"}) {
    if (EqualIgnoringCase(declared, type)) return ValueKind::kBoolean;
  }
  for (const char* type : {"DATE", "DATETIME", "TIMESTAMP"}) {
    if (EqualIgnoringCase(declared, type)) return ValueKind::kDate;
  }
  return ValueKind::kUnknown;
}

class SqliteTableFacts final : public TableFacts {
 public:
  explicit SqliteTableFacts(const Connection& connection) : m_connection(connection) {}

  std::optional<std::string> SavedQuery(const std::string& name) override {
    const SchemaEntry entry = m_connection.FindEntry(name);
    if (entry.type != "view") return std::nullopt;
    try {
      return QueryTextOfView(entry.sql);
    } catch (const Error&) {
      return std::nullopt;
    }
  }

  bool IsRowKey(const std::string& table, const std::string& column) override {
    const auto facts = m_connection.FindColumn(table, column, true);
    if (!facts || !facts->inKey || !EqualIgnoringCase(facts->type, "INTEGER")) return false;
    Statement count = m_connection.Prepare("SELECT count(*) FROM pragma_table_info(?1) WHERE pk > 0");
    count.Bind(1, std::string_view(table));
    return count.Next(table) && count.Integer(0) == 1;
  }

  bool ComparesExactly(const std::string& /*table*/, const std::string& /*column*/) override { return true; }
  bool MasksKeepGroups() const override { return true; }

 private:
  const Connection& m_connection;
};

// The tables of a dynaset's statement, if its rows can be changed; `pure` becomes false if it also reads
// views or nested statements.
void FindTables(const Connection& connection, const SelectStatement& statement, Plan& plan, bool& pure) {
  const SelectCore& core = statement.cores.front();
  if (statement.cores.size() != 1 || core.distinct || !core.groupBy.empty() || core.having) return;
  for (const SelectItem& item : core.items) {
    if (item.expression && HoldsAggregate(*item.expression)) return;
  }
  const auto collect = [&](const TableRef& table) {
    if (table.query || !connection.FindColumn(table.name, "_rowid_")) {
      pure = false;
    } else {
      plan.tables.push_back({table.name, table.alias.empty() ? table.name : table.alias, {"_rowid_"}, {}});
    }
  };
  for (const JoinChain& chain : core.from) ForEachTable(chain, collect);
}

// Which table a column belongs to. By the table's name when that is certain, else by how the text qualifies
// it.
std::size_t TableOf(const Plan& plan, const char* tableName, const Expression* written, bool pure) {
  if (tableName == nullptr) return ResultColumn::kNoTable;
  const bool qualified =
      written != nullptr && written->kind == ExpressionKind::kColumn && !written->qualifier.empty();
  std::size_t found = ResultColumn::kNoTable;
  for (std::size_t i = 0; i < plan.tables.size(); ++i) {
    if (!EqualIgnoringCase(plan.tables[i].name, tableName)) continue;
    if (qualified) {
      if (EqualIgnoringCase(plan.tables[i].alias, written->qualifier)) return i;
      continue;
    }
    if (!pure || found != ResultColumn::kNoTable) return ResultColumn::kNoTable;
    found = i;
  }
  return found;
}

void DescribeColumns(Plan& plan, const Statement& prepared, const SelectStatement& select, bool pure) {
  sqlite3_stmt* const statement = prepared.Get();
  const std::size_t visible = static_cast<std::size_t>(prepared.ColumnCount()) - plan.hidden;
  const SelectCore& core = select.cores.front();
  const bool star = std::any_of(core.items.begin(), core.items.end(),
                                [](const SelectItem& item) { return !item.expression; });
  for (std::size_t i = 0; i < visible; ++i) {
    const int index = static_cast<int>(i);
    ResultColumn& column = plan.columns.emplace_back();
    column.name = prepared.ColumnName(index);
    column.kind = KindOf(sqlite3_column_decltype(statement, index));
    const Expression* written = star || i >= core.items.size() ? nullptr : core.items[i].expression.get();
    column.table = TableOf(plan, sqlite3_column_table_name(statement, index), written, pure);
    if (column.table == ResultColumn::kNoTable) continue;
    const char* origin = sqlite3_column_origin_name(statement, index);
    if (origin != nullptr) column.baseName = origin;
  }
}

// Whether changing these columns can move a row within an index, or start a trigger.
bool Disturbs(const Connection& connection, const PlanTable& table, const Plan& plan,
              const std::vector<std::size_t>& columns) {
  Statement find = connection.Prepare(
      "SELECT 1 FROM sqlite_schema WHERE type = 'trigger' AND tbl_name = ?1 COLLATE NOCASE "
      "UNION ALL SELECT 1 FROM pragma_index_list(?1) AS l JOIN pragma_index_xinfo(l.name) AS x "
      "WHERE x.name = ?2 COLLATE NOCASE "
      "UNION ALL SELECT 1 FROM sqlite_schema WHERE type = 'index' AND tbl_name = ?1 COLLATE NOCASE "
      "AND instr(lower(sql), lower(?2)) > 0");
  for (const std::size_t index : columns) {
    const std::string& column = plan.columns[index].baseName;
    const auto facts = connection.FindColumn(table.name, column);
    if (facts && facts->inKey) return true;
    const ResetGuard guard(find);
    find.Bind(1, std::string_view(table.name));
    find.Bind(2, std::string_view(column));
    if (find.Next(table.name)) return true;
  }
  return false;
}

}  // namespace

std::shared_ptr<Plan> MakePlan(const Connection& connection, const Sql& sql, StatementUse use,
                               const ColumnNames& read) {
  const SqliteDialect dialect(false);
  const auto exists = [&](std::string_view name) { return !connection.FindEntry(name).type.empty(); };
  jet_sql::Statement statement = ReadSource(sql, use != StatementUse::kAction, exists);
  auto plan = std::make_shared<Plan>();
  bool pure = true;
  SelectStatement* select = std::get_if<SelectStatement>(&statement);
  if (select != nullptr) {
    SqliteTableFacts facts(connection);
    if (use == StatementUse::kSnapshot) RemoveGroupsOfSingleRows(facts, *select);
    ReadGroupingQueriesByText(facts, *select);
  }
  if (select != nullptr && !read.empty()) {
    const Statement whole = connection.Prepare(Print(statement, dialect));
    std::vector<ResultColumn> columns(static_cast<std::size_t>(whole.ColumnCount()));
    for (std::size_t i = 0; i < columns.size(); ++i) columns[i].name = whole.ColumnName(static_cast<int>(i));
    LeaveOutUnreadColumns(*select, columns, read);
  }
  if (select != nullptr) LeaveOutUnreadNestedColumns(*select);
  if (use == StatementUse::kDynaset && select != nullptr) {
    FindTables(connection, *select, *plan, pure);
    AddKeyColumns(*select, *plan);
  }
  plan->sql = Print(statement, dialect);
  const std::string& text = plan->sql.Text();
  Statement prepared =
      connection.Prepare(text, use == StatementUse::kAction ? Doing::kWriting : Doing::kReading);
  if (select != nullptr) DescribeColumns(*plan, prepared, *select, pure);
  if (use == StatementUse::kAction) plan->bounded = connection.IsBounded(text);
  plan->idle.push_back(std::move(prepared));
  return plan;
}

RowUpdate& FindRowUpdate(const Connection& connection, Plan& plan, const std::vector<std::size_t>& columns) {
  const auto make = [&](const PlanTable& table, const PrintedSql& sql) {
    auto update = std::make_unique<RowUpdate>();
    update->disturbs = Disturbs(connection, table, plan, columns);
    update->bounded = connection.IsBounded(sql.Text());
    update->statement = connection.Prepare(sql.Text(), Doing::kWriting);
    return update;
  };
  return engine::FindRowUpdate(plan, columns, SqliteDialect(false), make);
}

}  // namespace kxrestore::engine::sqlite
