// Listings of the latest versions, whose saved query groups rows that are single anyway.
#pragma once

#include "engine/jet_sql/ast.h"
#include "engine/jet_sql/table_facts.h"

namespace kxrestore::engine::jet_sql {

// The saved queries FullCatalogLatest and FullCatalogLatestBySet join rows F with the newest key G of each
// name,
//
//   SELECT First(F.x) AS x ... FROM F INNER JOIN G ON F.ID = G.ID WHERE F.Status = 2 GROUP BY F.OrigName
//   ORDER BY ... G: SELECT F.OrigName AS OrigName, ..., Max(F.ID) AS ID FROM F WHERE F.Status = 2 GROUP BY
//   F.OrigName
//
// and group the result by the name again. Where ID names one row of F, no group of the result has more than
// one. Then a listing of all columns of such a query reads it without those groups, and the listing's masks
// of the name stand before the grouping of G. Any other statement, and one whose tables do not prove the key,
// stays as it is.
void RemoveGroupsOfSingleRows(TableFacts& facts, SelectStatement& listing);

}  // namespace kxrestore::engine::jet_sql
