// Derives the kind of an expression from the kinds of its parts.
#pragma once

#include "engine/jet_sql/ast.h"

namespace kxrestore::engine::jet_sql {

// Whether the expression is a literal, or a parameter in place of one.
bool IsLiteral(const Expression& expression);

// The kind of an expression whose parts are resolved; unknown for columns, parameters and nested queries.
ValueKind KindOf(const Expression& expression);

}  // namespace kxrestore::engine::jet_sql
