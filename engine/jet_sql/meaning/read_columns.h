// Drops result columns that the caller does not read.
#pragma once

#include <string_view>
#include <vector>

#include "engine/jet_sql/ast.h"
#include "engine/jet_sql/meaning/name_resolver.h"

namespace kxrestore::engine::jet_sql {

// Removes the columns that are not in `read` from a statement whose `columns` are known. Keeps calculated and
// renamed columns, and all columns of SELECT DISTINCT, because those decide which rows there are. Does
// nothing if `read` is empty or names no column of the result.
void LeaveOutUnreadColumns(SelectStatement& statement, std::vector<ResultColumn>& columns,
                           const std::vector<std::string_view>& read);

// Removes the columns of nested statements in FROM that the statement around them does not read. Databases
// carry such columns through every sort of a group.
void LeaveOutUnreadNestedColumns(SelectStatement& statement);

}  // namespace kxrestore::engine::jet_sql
