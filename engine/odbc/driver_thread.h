// Runs blocking driver calls on a worker thread while the calling thread keeps invoking the waiting callback.
// A call that does not end in time is given up: its thread is left to itself and cleans up when the call
// returns, and nothing that the call uses may be freed before.
#pragma once

#include <chrono>
#include <exception>
#include <functional>
#include <memory>
#include <thread>

#include "engine/database.h"

namespace kxrestore::engine::odbc {

class DriverThread {
 public:
  using Work = std::function<void()>;
  struct Limits {
    std::chrono::milliseconds wait;  // for the call
    // For the call to end once the callback has asked for a stop.
    std::chrono::milliseconds grace{0};
    // Asks the driver to end the call. It runs on a third thread, since it may block as well; empty for none.
    Work cancel;
  };
  enum class Ending {
    kDone,
    kStopped,  // the callback asked for it, and the call has ended
    kGivenUp,  // the callback asked for it, and the call has not ended
    kTimedOut,
  };

  // `tidy` runs before each call and after Wake, `last` once, when no more call comes. Neither may throw, and
  // like all calls they own what they use. Error 7 when there can be no thread.
  DriverThread(std::shared_ptr<const Waiting> waiting, Work tidy, Work last);
  // Waits for `last`, but not long; the callback is invoked meanwhile.
  ~DriverThread();
  DriverThread(const DriverThread&) = delete;
  DriverThread& operator=(const DriverThread&) = delete;

  // Throws what the call throws once it is done, and what the callback throws, which also stops the call.
  // After kGivenUp and kTimedOut no call may follow. Error 3219 from inside the callback.
  Ending Run(Work call, const Limits& limits);
  void Wake() noexcept;
  // Whether a call was given up.
  bool IsLeft() const { return !m_thread.joinable(); }

  // Invokes the callback if that was last done long enough ago: for work of many short steps. False when it
  // asks for a stop.
  bool GiveTurn();
  // Sleeps, invoking the callback; false when that asked for a stop.
  bool Pause(std::chrono::milliseconds time);

 private:
  struct State;

  static void Serve(State& state);
  bool Turn(std::exception_ptr& failure) noexcept;
  void Leave() noexcept;

  std::shared_ptr<const Waiting> m_waiting;
  std::shared_ptr<State> m_state;  // the worker's, too
  bool m_inTurn = false;
  std::chrono::steady_clock::time_point m_lastTurn;
  std::thread m_thread;
};

}  // namespace kxrestore::engine::odbc
