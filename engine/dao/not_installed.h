// The one report for a file of the desktop engine where that engine cannot be had.
#pragma once

#include <string>
#include <string_view>

namespace kxrestore::engine::dao {

// Error 429. `reason`: what making the engine had to say, when there was one to make.
[[noreturn]] void RaiseNotInstalled(const std::string& file, std::string_view reason = {});

}  // namespace kxrestore::engine::dao
