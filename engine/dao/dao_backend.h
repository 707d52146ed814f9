// The back end for files of the desktop engine: the engine itself, through automation. Statements are passed
// unchanged. COM must be initialised on the thread that opens, in any mode. The engine works on that thread,
// so the waiting callback is not invoked during a long statement.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "engine/database.h"

namespace kxrestore::engine::dao {

// Null where automation is not available.
std::unique_ptr<Backend> MakeDaoBackend();

// Error 429 for a file of the desktop engine when that engine is not available. `reason`: why creating the
// engine failed, if it exists.
[[noreturn]] void RaiseNotInstalled(const std::string& file, std::string_view reason = {});

}  // namespace kxrestore::engine::dao
