// Makes plans: parses, resolves names, translates, and adds the keys used to update a dynaset's rows.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/odbc/odbc_statement.h"
#include "engine/plan_cache.h"

namespace kxrestore::engine::odbc {

class Session;

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

// A value converted to the column's type where the server would otherwise refuse it.
Value ForColumn(const Value& value, jet_sql::ValueKind kind);

// The statement's values in the order of the plan's parameters, each converted to the type of the column that
// it is compared with.
std::vector<Value> ParameterValues(const Plan& plan, const std::vector<Value>& values,
                                   const jet_sql::Dialect& dialect);

// `read`: see Database::OpenRecordset.
std::shared_ptr<Plan> MakePlan(Session& session, const Sql& sql, StatementUse use, const ColumnNames& read);

// The parts of CREATE VIEW for a saved query.
struct ViewBody {
  std::string sql;
  std::vector<std::string> columns;  // names; empty when unknown
};
ViewBody TranslateSavedQuery(Session& session, std::string_view text);

}  // namespace kxrestore::engine::odbc
