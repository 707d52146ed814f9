// What is known of the values of an expression from its parts.
#pragma once

#include "engine/jet_sql/ast.h"

namespace kxrestore::engine::jet_sql {

// Whether it is a value that stands in the text, or a parameter in place of one.
bool IsLiteral(const Expression& expression);

// The kind of an expression whose parts have theirs. Unknown for columns, parameters and nested queries.
ValueKind KindOf(const Expression& expression);

}  // namespace kxrestore::engine::jet_sql
