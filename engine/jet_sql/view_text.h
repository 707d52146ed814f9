// From the view that a database keeps to a saved query's text in the catalog's dialect.
#pragma once

#include <string>
#include <string_view>

namespace kxrestore::engine::jet_sql {

// The SELECT of a CREATE VIEW statement in the catalog's dialect: "names" become [names], comments go, % and
// _ of Like become * and ?. Trimmed, ends in ";".
std::string QueryTextOfView(std::string_view createView);

}  // namespace kxrestore::engine::jet_sql
