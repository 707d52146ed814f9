// Makes plans: translates a text and looks up what its columns are and where they can be changed.
#pragma once

#include <memory>

#include "engine/plan_cache.h"
#include "engine/sqlite/connection.h"
#include "engine/sqlite/plan.h"

namespace kxrestore::engine::sqlite {

// `read`: see Database::OpenRecordset.
std::shared_ptr<Plan> MakePlan(const Connection& connection, const Sql& sql, StatementUse use,
                               const ColumnNames& read);

// The update of these columns of one table, made at first use.
RowUpdate& FindRowUpdate(const Connection& connection, Plan& plan, const std::vector<std::size_t>& columns);

}  // namespace kxrestore::engine::sqlite
