// File access for SQLite that gives the program its turns: reading, writing and syncing may take long where
// SQLite itself comes to no place at which it would ask. All work is done by the system's own file access.
#pragma once

namespace kxrestore::engine::sqlite {

// Registers it, over what is the default at this time, and returns its name. SQLite's result code in `code`.
const char* RegisterTurnVfs(int& code);

}  // namespace kxrestore::engine::sqlite
