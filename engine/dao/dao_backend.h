// The back end for files of the desktop engine: the engine itself, through automation. Statements are passed
// unchanged. COM must be initialised on the thread that opens, in any mode. The engine works on that thread,
// so the waiting callback is not invoked during a long statement.
#pragma once

#include <memory>

#include "engine/database.h"

namespace kxrestore::engine::dao {

// Null where automation is not available.
std::unique_ptr<Backend> MakeDaoBackend();

}  // namespace kxrestore::engine::dao
