// Invokes the waiting callback every 20 ms while SQLite works, stops the work if it asks for that, and limits
// the total time that one user action waits for other processes' locks.
//
// Every SQLite call that may take long runs between Enter and Leave. During the call, SQLite's handlers and
// the file access (turn_vfs.h) call GoOn and WaitForLock.
#pragma once

#include <chrono>
#include <exception>
#include <functional>
#include <memory>

#include "engine/database.h"
#include "engine/sqlite/api.h"

namespace kxrestore::engine::sqlite {

// What the callback may stop during a call.
enum class Stop {
  kNothing,
  kWaits,    // waiting for locks
  kWork,     // anything
  kCommits,  // waiting for locks, after a grace period; the call fails as if its time had run out
  kAtOnce,   // nothing, as the call does not wait for locks
};

class Waiter {
 public:
  // `lockTimeout`: the time to wait for other processes' locks in one user action, or in one call outside of
  // an action.
  Waiter(std::chrono::milliseconds lockTimeout, std::shared_ptr<const Waiting> waiting)
      : m_lockTimeout(lockTimeout), m_waiting(std::move(waiting)) {}

  void BeginAction();
  void EndAction() { m_inAction = false; }
  std::chrono::milliseconds LockTimeout() const { return m_lockTimeout; }

  void Enter(Stop stop) noexcept;
  // Returns SQLITE_INTERRUPT for a call that the callback has stopped, or rethrows the callback's exception.
  Outcome Leave(int code);
  void LeaveQuietly() noexcept;  // for destructors

  // The waiter of the call that runs on this thread; null if there is none.
  static Waiter* Current() noexcept;

  // Invokes the callback if it is due. False when the work is to stop.
  bool GoOn() noexcept;
  void GiveTurn() noexcept;  // invokes it without regard to its result
  // Sleeps briefly before the next attempt to get a lock; false when the call is to give up. `first`: no
  // attempt to get this lock has been repeated yet.
  bool WaitForLock(bool first) noexcept;
  // Sleeps for SQLite (xSleep).
  void Sleep(std::chrono::microseconds time) noexcept;
  // Runs a long, indivisible system call, such as a disk sync, on another thread while invoking the callback.
  // `work` must not throw.
  void DoAside(const std::function<void()>& work) noexcept;

 private:
  using Clock = std::chrono::steady_clock;

  bool Wanted() const { return *m_waiting && !m_inTurn; }
  bool TakeTurn() noexcept;
  bool StopsWaiting(Clock::time_point now) const;

  std::chrono::milliseconds m_lockTimeout;
  std::shared_ptr<const Waiting> m_waiting;
  bool m_inAction = false, m_inTurn = false;
  Stop m_stop = Stop::kNothing;
  bool m_answer = true;          // the callback's last result
  bool m_stopped = false;        // the current call is to stop
  std::exception_ptr m_failure;  // no exception may pass through SQLite
  Clock::time_point m_nextTurn, m_entered, m_lockSeen;
  Clock::duration m_waited{};
};

}  // namespace kxrestore::engine::sqlite
