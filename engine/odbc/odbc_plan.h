// A statement of the catalog's dialect, translated for the server.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/jet_sql/meaning/name_resolver.h"
#include "engine/jet_sql/printing/server_dialects.h"
#include "engine/odbc/odbc_statement.h"
#include "engine/plan_cache.h"

namespace kxrestore::engine::odbc {

struct PlanTable {
  std::string name;
  std::vector<std::string> keys;        // columns of its key; empty when rows cannot be identified
  std::vector<std::size_t> keyColumns;  // the hidden columns that hold them
};

struct RowUpdate {
  std::vector<std::size_t> columns;
  std::unique_ptr<OdbcStatement> statement;
};

struct Plan : CachedPlan {
  jet_sql::PrintedSql sql;
  std::vector<jet_sql::ParameterUse> uses;
  std::vector<jet_sql::ResultColumn> columns;  // in the order of the result, without the hidden ones
  bool columnsKnown = false;
  std::vector<PlanTable> tables;
  std::size_t hidden = 0;
  std::vector<std::unique_ptr<RowUpdate>> updates;
  std::vector<std::unique_ptr<OdbcStatement>> idle;
  bool isShort = false;  // its last result fitted into one block
};

// The statement's values in the order of the plan's parameters, each converted to the type of the column that
// it is compared with.
std::vector<Value> ParameterValues(const Plan& plan, const std::vector<Value>& values,
                                   const jet_sql::ServerDialect& dialect);

}  // namespace kxrestore::engine::odbc
