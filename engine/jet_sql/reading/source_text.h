// Parses the source of a recordset or an action: a statement, or the name of a table.
#pragma once

#include <functional>
#include <string_view>

#include "engine/jet_sql/ast.h"

namespace kxrestore::engine::jet_sql {

// `key` is the text whose literals ExtractLiterals has taken out, or `source` itself. `reads`: a recordset is
// wanted, which may name a table that `exists` knows. Errors: 3065 and 3219 for statements of the other sort,
// and those of Parse.
Statement ReadSource(std::string_view source, std::string_view key, bool reads,
                     const std::function<bool(std::string_view)>& exists);

// Parses a saved query; error 3219 for a writing statement.
Statement ParseReading(std::string_view text);

}  // namespace kxrestore::engine::jet_sql
