// Turns a database's view back into a saved query in the catalog's dialect.
#pragma once

#include <string>
#include <string_view>

namespace kxrestore::engine::jet_sql {

// What the database's LIKE supports besides % and _.
struct LikeSigns {
  char escape = '\0';     // the default escape character; 0 for none
  bool hasLists = false;  // [a-z], [^a-z]
};

// Returns the SELECT of a CREATE VIEW statement: "names" become [names], comments are dropped, % and _ of
// Like become * and ?. Trimmed, ends in ";". Error 3075 if the dialect cannot express it.
std::string QueryTextOfView(std::string_view createView, const LikeSigns& signs = {});

}  // namespace kxrestore::engine::jet_sql
