// Listings over a saved query that groups rows which are single anyway.
#pragma once

#include "engine/jet_sql/ast.h"
#include "engine/jet_sql/table_facts.h"

namespace kxrestore::engine::jet_sql {

// A saved query may join rows F with a second saved query that keeps one key for each value of a column of F,
//
//   SELECT First(F.x) ... FROM F INNER JOIN G ON F.key = G.key WHERE ... GROUP BY F.name ORDER BY ...
//   G: SELECT Max(F.key) AS key FROM F WHERE ... GROUP BY F.name
//
// and group the result by that column again. Where a key names one row of F, no group of the result has more
// than one row. Then a listing of that query is turned into one without the outer groups, whose masks of
// the grouped column stand before the inner grouping. Anything else, and whatever the tables cannot prove,
// stays as it is.
void RemoveGroupsOfSingleRows(TableFacts& facts, SelectStatement& listing);

}  // namespace kxrestore::engine::jet_sql
