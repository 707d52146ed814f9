// Plans for servers.
#pragma once

#include <memory>
#include <vector>

#include "engine/odbc/odbc_statement.h"
#include "engine/plan.h"

namespace kxrestore::engine::odbc {

struct RowUpdate {
  std::vector<std::size_t> columns;
  std::unique_ptr<OdbcStatement> statement;
};

struct Plan : CachedPlan {
  std::vector<jet_sql::ParameterUse> uses;
  bool columnsKnown = false;
  std::vector<std::unique_ptr<RowUpdate>> updates;
  std::vector<std::unique_ptr<OdbcStatement>> idle;
  bool isShort = false;  // its last result fitted into one block
};

// The statement's values in the order of the plan's parameters, each converted to the type of the column that
// it is compared with.
std::vector<Value> ParameterValues(const Plan& plan, const std::vector<Value>& values,
                                   const jet_sql::Dialect& dialect);

}  // namespace kxrestore::engine::odbc
