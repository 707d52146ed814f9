// Makes plans: translates a statement and finds out which table columns its result columns come from.
#pragma once

#include <memory>
#include <vector>

#include "engine/plan_cache.h"
#include "engine/sqlite/connection.h"

namespace kxrestore::engine::sqlite {

struct RowUpdate {
  std::vector<std::size_t> columns;
  bool disturbs = false;  // may move the row within an index that an open statement uses
  bool bounded = false;   // see Connection::IsBounded
  Statement statement;
};

struct Plan : CachedPlan {
  std::vector<std::unique_ptr<RowUpdate>> updates;
  std::vector<Statement> idle;
  bool bounded = false;  // of an action
};

// `read`: see Database::OpenRecordset.
std::shared_ptr<Plan> MakePlan(const Connection& connection, const Sql& sql, StatementUse use,
                               const ColumnNames& read);

// The UPDATE of these columns of one table, created on first use.
RowUpdate& FindRowUpdate(const Connection& connection, Plan& plan, const std::vector<std::size_t>& columns);

}  // namespace kxrestore::engine::sqlite
