// The back end for files of the desktop engine: the engine itself, over automation. Statements reach it as
// they are. It wants COM initialised on the thread that opens, in whatever way, and nothing else.
#pragma once

#include <memory>

#include "engine/database.h"

namespace kxrestore::engine::dao {

// Nothing where there is no automation.
std::unique_ptr<Backend> MakeDaoBackend();

}  // namespace kxrestore::engine::dao
