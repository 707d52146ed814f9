// Between a saved query's text in the catalog's dialect and the view that SQLite keeps.
#pragma once

#include <string>
#include <string_view>

namespace kxrestore::engine::sqlite {

// The SELECT of a CREATE VIEW statement in the catalog's dialect: "names" become [names], comments go, % and
// _ of Like become * and ?. Trimmed, ends in ";".
std::string QueryTextOfView(std::string_view createView);

// The CREATE VIEW statement for a saved query. Errors: 3075, 3142; 3065 kinds of statements that do not read:
// 3219.
std::string CreateViewText(std::string_view name, std::string_view sql);

}  // namespace kxrestore::engine::sqlite
