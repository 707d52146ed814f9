// Makes plans: translates a text and looks up what its columns are and where they can be changed.
#pragma once

#include <memory>
#include <string_view>

#include "engine/sqlite/session.h"

namespace kxrestore::engine::sqlite {

// `read`: see Database::OpenRecordset.
std::shared_ptr<Plan> MakePlan(const Session& session, const Sql& sql, Session::Use use,
                               const ColumnNames& read);

// The update of these columns of one table, made at first use.
RowUpdate& FindRowUpdate(const Session& session, Plan& plan, const std::vector<std::size_t>& columns);

}  // namespace kxrestore::engine::sqlite
