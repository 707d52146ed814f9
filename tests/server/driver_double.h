// A double of the driver manager: every function that the back end calls goes through it (the linker's
// --wrap, see CMakeLists.txt) to the real one, unless the call is the one that is to fail. Calls are counted
// while it is switched on, on whatever thread they come.
#pragma once

#include <chrono>
#include <cstddef>
#include <ostream>

namespace kxrestore::server_test {

enum class DriverFault {
  kNone,
  kFail,       // the call does nothing and fails
  kDrop,       // the connection is gone before the call
  kDropAfter,  // the call is made, and the connection is gone before its answer
  kDelay,      // the call takes longer
};
std::ostream& operator<<(std::ostream& out, DriverFault fault);

class DriverDouble {
 public:
  // Starts injecting faults and resets the call counter. `at`: the number of the call to hit, from 1.
  DriverDouble(DriverFault fault, std::size_t at, std::chrono::milliseconds delay = {});
  ~DriverDouble();
  DriverDouble(const DriverDouble&) = delete;
  DriverDouble& operator=(const DriverDouble&) = delete;

  static std::size_t Calls();
  static const char* Hit();  // the function that it happened to; null when none was reached
};

}  // namespace kxrestore::server_test
