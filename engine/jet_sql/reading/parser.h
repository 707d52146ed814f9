// Parses one statement of the catalog's SQL dialect, and the standard SQL that views use: CASE, CAST,
// COLLATE, ||, LEFT OUTER JOIN. Errors: 3075 with the offending piece, 3142 for text after the end.
#pragma once

#include <cstddef>
#include <string_view>

#include "engine/jet_sql/ast.h"

namespace kxrestore::engine::jet_sql {

// `parameters`: how many values the text leaves out; see Sql.
Statement Parse(std::string_view source, std::size_t parameters = 0);

}  // namespace kxrestore::engine::jet_sql
