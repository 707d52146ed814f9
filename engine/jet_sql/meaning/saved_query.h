// Inlines saved queries.
#pragma once

#include <optional>
#include <string>

#include "engine/jet_sql/ast.h"
#include "engine/jet_sql/meaning/table_facts.h"

namespace kxrestore::engine::jet_sql {

// Parses the text of a saved query. Nothing for a table, a writing statement, or what the dialect cannot
// parse.
std::optional<SelectStatement> ReadSavedQuery(TableFacts& facts, const std::string& name);

// Inlines the saved queries that group without regard to case. As views they can use only NOCASE, which folds
// ASCII letters only.
void ReadGroupingQueriesByText(TableFacts& facts, SelectStatement& statement);

}  // namespace kxrestore::engine::jet_sql
