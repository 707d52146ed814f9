// Prints a parsed statement for one kind of database.
#pragma once

#include <string>

#include "engine/jet_sql/ast.h"
#include "engine/jet_sql/dialect.h"

namespace kxrestore::engine::jet_sql {

std::string Print(const Statement& statement, const Dialect& dialect);
std::string Print(const SelectStatement& statement, const Dialect& dialect);

}  // namespace kxrestore::engine::jet_sql
