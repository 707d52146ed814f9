// Parses the source of a recordset or an action: a statement, or the name of a table.
#pragma once

#include <functional>
#include <string_view>

#include "engine/jet_sql/ast.h"
#include "engine/sql.h"

namespace kxrestore::engine::jet_sql {

// `reads`: a recordset is wanted, which may name a table that `exists` knows. Errors: 3065 and 3219 for
// statements of the other kind, and those of Parse.
Statement ReadSource(const Sql& sql, bool reads, const std::function<bool(std::string_view)>& exists);

// Parses a saved query; error 3219 for a writing statement.
Statement ParseReading(std::string_view text);

}  // namespace kxrestore::engine::jet_sql
