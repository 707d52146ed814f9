// From the view that a database keeps to a saved query's text in the catalog's dialect.
#pragma once

#include <string>
#include <string_view>

namespace kxrestore::engine::jet_sql {

// What the database's LIKE has beside % and _.
struct LikeSigns {
  char escape = '\0';     // takes the next sign as it stands, also where no ESCAPE clause says so; 0 for none
  bool hasLists = false;  // [a-z], [^a-z]
};

// The SELECT of a CREATE VIEW statement in the catalog's dialect: "names" become [names], comments go, % and
// _ of Like become * and ?. Trimmed, ends in ";". Error 3075 for what the dialect cannot say.
std::string QueryTextOfView(std::string_view createView, const LikeSigns& signs = {});

}  // namespace kxrestore::engine::jet_sql
