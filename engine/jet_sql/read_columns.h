// The columns of a result that somebody reads.
#pragma once

#include <string_view>
#include <vector>

#include "engine/jet_sql/ast.h"
#include "engine/jet_sql/name_resolver.h"

namespace kxrestore::engine::jet_sql {

// Takes the columns that are not in `read` out of a statement whose `columns` are known. What decides which
// rows there are stays: columns that are calculated or have another name, and every column where rows are
// told apart by all of them. Without `read`, or when the result has none of them, the statement stays as it
// is.
void LeaveOutUnreadColumns(SelectStatement& statement, std::vector<ResultColumn>& columns,
                           const std::vector<std::string_view>& read);

}  // namespace kxrestore::engine::jet_sql
