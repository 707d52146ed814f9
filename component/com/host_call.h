// Calls code of the host that may violate COM's rules and throw a C++ exception. The form of the exception
// depends on the host's compiler:
//
// - Microsoft's raises a structured exception, which is caught on both platforms.
// - GCC's is caught by catch (...), except in a 32-bit program with a C++ run-time of its own: that run-time
//   cannot unwind through another module and terminates the process.
#pragma once

#include <concepts>

namespace kxrestore::component::com {

namespace detail {

using Routine = void (*)(void* context);
extern "C" int kxrestore_call_host(Routine routine,
                                   void* context);  // 0 when an exception of Microsoft's ended it

}  // namespace detail

// Runs `body` and ignores its result. False when a C++ exception ended it. Any other structured exception,
// such as an access violation, propagates.
template <std::invocable Body>
bool CallHost(Body&& body) noexcept {
  struct Call {
    Body& body;
    bool done = false;
  } call{body};
  const auto routine = [](void* context) {
    Call& ours = *static_cast<Call*>(context);
    try {
      ours.body();
      ours.done = true;
    } catch (...) {  // a failing event handler is the host's concern
    }
  };
  return detail::kxrestore_call_host(routine, &call) != 0 && call.done;
}

}  // namespace kxrestore::component::com
