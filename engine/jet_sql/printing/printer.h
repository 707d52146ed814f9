// Prints a parsed statement for one kind of database.
#pragma once

#include <string>

#include "engine/jet_sql/ast.h"
#include "engine/jet_sql/printing/dialect.h"

namespace kxrestore::engine::jet_sql {

enum class PrintedAs { kStatement, kView };

// For drivers that number parameters by their order in the text.
PrintedSql PrintWithParameters(const Statement& statement, const Dialect& dialect,
                               PrintedAs printedAs = PrintedAs::kStatement);
// The text alone.
std::string Print(const Statement& statement, const Dialect& dialect,
                  PrintedAs printedAs = PrintedAs::kStatement);
std::string PrintSelect(const SelectStatement& statement, const Dialect& dialect);

}  // namespace kxrestore::engine::jet_sql
