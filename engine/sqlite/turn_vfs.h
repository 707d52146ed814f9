// A VFS for SQLite that invokes the waiting callback during reads, writes and syncs, which may take long
// without a call of SQLite's progress handler. It forwards all work to the system's VFS.
#pragma once

namespace kxrestore::engine::sqlite {

// Registers it on top of the current default VFS and returns its name. SQLite's result code in `code`.
const char* RegisterTurnVfs(int& code);

}  // namespace kxrestore::engine::sqlite
