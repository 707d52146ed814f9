// How long the back end waits for a server.
#pragma once

#include <chrono>

namespace kxrestore::engine::odbc {

struct Waits {
  std::chrono::milliseconds login{22'000};  // the driver is told two seconds less
  std::chrono::milliseconds call{65'000};   // the server is told five seconds less for a statement
  std::chrono::milliseconds locks{3'000};   // for the locks of others, all waits of one user action together
};

}  // namespace kxrestore::engine::odbc
