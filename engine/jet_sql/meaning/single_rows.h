// Removes needless grouping from listings of the latest versions.
#pragma once

#include "engine/jet_sql/ast.h"
#include "engine/jet_sql/meaning/table_facts.h"

namespace kxrestore::engine::jet_sql {

// The saved queries FullCatalogLatest and FullCatalogLatestBySet join rows F with the newest key G of each
// name and group the result by name again:
//
//   SELECT First(F.x) AS x ... FROM F INNER JOIN G ON F.ID = G.ID WHERE F.Status = 2
//   GROUP BY F.OrigName ORDER BY ...
//
//   G: SELECT F.OrigName AS OrigName, ..., Max(F.ID) AS ID FROM F WHERE F.Status = 2
//   GROUP BY F.OrigName
//
// If ID is unique in F, every group of the result is a single row. A listing of all columns of such a query
// is then rewritten to read it without the outer groups, with masks on the name moved before the grouping of
// G. All other statements stay as they are.
void RemoveGroupsOfSingleRows(TableFacts& facts, SelectStatement& listing);

}  // namespace kxrestore::engine::jet_sql
