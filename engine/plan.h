// A statement of the catalog's dialect, translated for a database, and how its rows can be changed.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/jet_sql/meaning/name_resolver.h"
#include "engine/jet_sql/printing/dialect.h"

namespace kxrestore::engine {

struct PlanTable {
  std::string name;
  std::string alias;                    // qualifies its columns
  std::vector<std::string> keys;        // columns of its key; empty when rows cannot be identified
  std::vector<std::size_t> keyColumns;  // the hidden columns that hold them
};

// Common to the plans of all back ends. A plan also has `idle`, the prepared statements that are not in use,
// and `updates`, one for each set of updated columns.
struct CachedPlan {
  jet_sql::PrintedSql sql;
  std::vector<jet_sql::ResultColumn> columns;  // in the order of the result, without the hidden ones
  std::vector<PlanTable> tables;               // of a dynaset
  std::size_t hidden = 0;                      // columns after the visible ones
  bool keepsPrepared = true;                   // false if the server does not report that a view has changed
  bool current = true;                         // false once the schema has changed
};

// Adds the keys of the plan's tables to the statement, as hidden columns with names that begin with
// "kx_key_".
void AddKeyColumns(jet_sql::SelectStatement& statement, CachedPlan& plan);

// The UPDATE of these columns in the row of one table. Its parameters are their values, then those of the
// key.
jet_sql::PrintedSql RowUpdateText(const CachedPlan& plan, const std::vector<std::size_t>& columns,
                                  const jet_sql::Dialect& dialect);

// The plan's update of these columns; otherwise `make` makes it from its table and its text.
template <class Plan, class Make>
auto& FindRowUpdate(Plan& plan, const std::vector<std::size_t>& columns, const jet_sql::Dialect& dialect,
                    Make make) {
  for (const auto& update : plan.updates) {
    if (update->columns == columns) return *update;
  }
  const PlanTable& table = plan.tables[plan.columns[columns.front()].table];
  plan.updates.push_back(make(table, RowUpdateText(plan, columns, dialect)));
  plan.updates.back()->columns = columns;
  return *plan.updates.back();
}

}  // namespace kxrestore::engine
