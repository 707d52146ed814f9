// Runs blocking driver calls on a worker thread while the calling thread keeps invoking the waiting callback.
// A call that does not end in time is abandoned: its thread cleans up when the call returns, and nothing that
// the call uses may be freed before.
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
    // Time for the call to end after the callback has requested a stop.
    std::chrono::milliseconds grace{0};
    // Asks the driver to end the call. Runs on a third thread, because it may block as well; may be empty.
    Work cancel;
  };
  enum class Ending {
    kDone,
    kStopped,  // the callback requested a stop, and the call has ended
    kGivenUp,  // the callback requested a stop, and the call has not ended
    kTimedOut,
  };

  // `tidy` runs before each call and after Wake, `last` once at the end. Neither may throw; both own the data
  // that they use, like all calls. Error 7 when no thread can be created.
  DriverThread(std::shared_ptr<const Waiting> waiting, Work tidy, Work last);
  // Waits a limited time for `last`, invoking the callback.
  ~DriverThread();
  DriverThread(const DriverThread&) = delete;
  DriverThread& operator=(const DriverThread&) = delete;

  // Rethrows what the call throws once it is done, and what the callback throws, which also stops the call.
  // After kGivenUp and kTimedOut no call may follow. Error 3219 inside the callback.
  Ending Run(Work call, const Limits& limits);
  void Wake() noexcept;
  // Whether a call was abandoned.
  bool IsAbandoned() const { return !m_thread.joinable(); }

  // Invokes the callback if it is due; for work made of many short steps. False when it requests a stop.
  bool GiveTurn();
  // Sleeps, invoking the callback; false when it requests a stop.
  bool Pause(std::chrono::milliseconds time);

 private:
  struct State;

  static void Serve(State& state);
  bool Turn(std::exception_ptr& failure) noexcept;
  void Abandon() noexcept;

  std::shared_ptr<const Waiting> m_waiting;
  std::shared_ptr<State> m_state;  // shared with the worker
  bool m_inTurn = false;
  std::chrono::steady_clock::time_point m_lastTurn;
  std::thread m_thread;
};

}  // namespace kxrestore::engine::odbc
