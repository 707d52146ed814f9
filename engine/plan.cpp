#include "engine/plan.h"

namespace kxrestore::engine {

void AddKeyColumns(jet_sql::SelectStatement& statement, CachedPlan& plan) {
  for (PlanTable& table : plan.tables) {
    for (const std::string& key : table.keys) {
      jet_sql::SelectItem& item = statement.cores.front().items.emplace_back();
      item.expression = jet_sql::MakeColumn(table.alias, key);
      item.alias = "kx_key_" + std::to_string(plan.hidden);
      table.keyColumns.push_back(plan.hidden++);
    }
  }
}

jet_sql::PrintedSql RowUpdateText(const CachedPlan& plan, const std::vector<std::size_t>& columns,
                                  const jet_sql::Dialect& dialect) {
  const PlanTable& table = plan.tables[plan.columns[columns.front()].table];
  jet_sql::PrintedSql sql = "UPDATE " + dialect.Identifier(table.name);
  std::int64_t values = 0;
  const auto add = [&](const char* separator, const std::string& column) {
    sql += separator + dialect.Identifier(column) + " = ";
    sql += dialect.Parameter(++values);
  };
  for (const std::size_t column : columns) add(values == 0 ? " SET " : ", ", plan.columns[column].baseName);
  for (const std::string& key : table.keys) add(&key == &table.keys.front() ? " WHERE " : " AND ", key);
  return sql;
}

}  // namespace kxrestore::engine
