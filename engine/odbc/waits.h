// Time limits for a server.
#pragma once

#include <chrono>

namespace kxrestore::engine::odbc {

struct Waits {
  std::chrono::milliseconds login{22'000};  // the driver's own limit is two seconds less
  std::chrono::milliseconds call{65'000};   // the server's limit for a statement is five seconds less
  std::chrono::milliseconds locks{3'000};   // others' locks, in total for one user action
};

}  // namespace kxrestore::engine::odbc
