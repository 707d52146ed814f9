// The functions and the collation that translated statements use.
#pragma once

struct sqlite3;

namespace kxrestore::engine::sqlite {

// Returns SQLite's result code.
int RegisterFunctions(sqlite3* connection);

}  // namespace kxrestore::engine::sqlite
