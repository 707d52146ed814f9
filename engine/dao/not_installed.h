// The error for a file of the desktop engine when that engine is not available.
#pragma once

#include <string>
#include <string_view>

namespace kxrestore::engine::dao {

// Error 429. `reason`: why creating the engine failed, if it exists.
[[noreturn]] void RaiseNotInstalled(const std::string& file, std::string_view reason = {});

}  // namespace kxrestore::engine::dao
