// Saved queries that are read by their texts instead of as the views that a database makes of them.
#pragma once

#include <optional>
#include <string>

#include "engine/jet_sql/ast.h"
#include "engine/jet_sql/table_facts.h"

namespace kxrestore::engine::jet_sql {

// Nothing for a table, for what another program wrote beyond the dialect, and for a writing statement.
std::optional<SelectStatement> ReadSavedQuery(TableFacts& facts, const std::string& name);

// Puts the texts of saved queries that group without regard to case into a statement that reads them. A view
// has nothing but the database's own means for that, which know the case of ASCII letters only.
void ReadGroupingQueriesByText(TableFacts& facts, SelectStatement& statement);

}  // namespace kxrestore::engine::jet_sql
