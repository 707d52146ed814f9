// The back end for files of the desktop engine: the engine itself, over automation. Statements reach it as
// they are. It wants COM initialised on the thread that opens, in whatever way, and nothing else. The engine
// works on that thread, so nobody is asked while a statement takes long.
#pragma once

#include <memory>

#include "engine/database.h"

namespace kxrestore::engine::dao {

// Nothing where there is no automation.
std::unique_ptr<Backend> MakeDaoBackend();

}  // namespace kxrestore::engine::dao
