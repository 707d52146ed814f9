// Makes plans: translates a statement and finds out which table columns its result columns come from.
#pragma once

#include <memory>

#include "engine/plan_cache.h"
#include "engine/sqlite/connection.h"
#include "engine/sqlite/plan.h"

namespace kxrestore::engine::sqlite {

// `read`: see Database::OpenRecordset.
std::shared_ptr<Plan> MakePlan(const Connection& connection, const Sql& sql, StatementUse use,
                               const ColumnNames& read);

// The UPDATE of these columns of one table, created on first use.
RowUpdate& FindRowUpdate(const Connection& connection, Plan& plan, const std::vector<std::size_t>& columns);

}  // namespace kxrestore::engine::sqlite
