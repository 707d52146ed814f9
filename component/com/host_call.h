// Calling code of the host that lets a C++ exception out across COM, against the rules. What that exception
// is depends on the host's compiler:
//
// - Microsoft's raises a structured exception; it is caught for both platforms.
// - GCC's is a catch (...) away, except for a 32-bit program with a run-time of its own: that cannot unwind
// through
//   another module and ends itself before anybody is asked.
#pragma once

namespace kxrestore::component::com {

namespace detail {

using Routine = void (*)(void* context);
extern "C" int kxrestore_call_host(Routine routine,
                                   void* context);  // 0 when an exception of Microsoft's ended it

}  // namespace detail

// Runs `body`, whose result nobody wants. False when a C++ exception ended it. Any other structured exception
// (an access violation) goes on to whoever handles it.
template <class Body>
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
    } catch (...) {  // the host's affair; it has been told nothing but that its event came
    }
  };
  return detail::kxrestore_call_host(routine, &call) != 0 && call.done;
}

}  // namespace kxrestore::component::com
