// How the sessions of a back end wait: the program gets its turn every 20 ms, may end what goes on, and all
// the waiting for other processes' locks in one user action has one bound.
//
// Every call of SQLite that may take long stands between Enter and Leave. Meanwhile SQLite's handlers and the
// file access (turn_vfs.h) ask GoOn and WaitForLock.
#pragma once

#include <chrono>
#include <exception>
#include <functional>
#include <memory>

#include "engine/database.h"
#include "engine/sqlite/api.h"

namespace kxrestore::engine::sqlite {

// What the program may end while a call is under way.
enum class Stop {
  kNothing,
  kWaits,    // waiting for others, but no work
  kWork,     // anything
  kCommits,  // waiting for others, once that has taken a while; the call then fails as if time was up
};

class Waiter {
 public:
  // `patience`: for others' locks, in one user action altogether; outside of one, in one call.
  Waiter(std::chrono::milliseconds patience, std::shared_ptr<const Waiting> waiting)
      : m_patience(patience), m_waiting(std::move(waiting)) {}

  void BeginAction();
  void EndAction() { m_inAction = false; }
  std::chrono::milliseconds Patience() const { return m_patience; }

  void Enter(Stop stop) noexcept;
  // Turns a call that the program has ended into SQLITE_INTERRUPT; rethrows what the program's turn threw
  // when that has ended it.
  Outcome Leave(int code);
  void LeaveQuietly() noexcept;  // for destructors
  // While it lives, nobody is waited for.
  class NoWaiting {
   public:
    explicit NoWaiting(Waiter& waiter) : m_waiter(waiter) { m_waiter.m_waits = false; }
    ~NoWaiting() { m_waiter.m_waits = true; }
    NoWaiting(const NoWaiting&) = delete;
    NoWaiting& operator=(const NoWaiting&) = delete;

   private:
    Waiter& m_waiter;
  };

  // The waiter of the call that this thread is in; null outside of one.
  static Waiter* Current() noexcept;

  // Gives the program its turn when that is due. False when the work under way is to end.
  bool GoOn() noexcept;
  void GiveTurn() noexcept;  // whatever it answers
  // Waits a moment for another process; false when it is to be told that the file is locked. `first`: of the
  // moments for one lock.
  bool WaitForLock(bool first) noexcept;
  // SQLite's own pauses.
  void Sleep(std::chrono::microseconds time) noexcept;
  // Does something of the operating system's that may take long and cannot be divided, as waiting for a disk,
  // while the program has its turns. `work` must not throw.
  void DoAside(const std::function<void()>& work) noexcept;

 private:
  using Clock = std::chrono::steady_clock;

  bool Wanted() const { return *m_waiting && !m_inTurn; }
  bool TakeTurn() noexcept;
  bool StopsWaiting(Clock::time_point now) const;

  std::chrono::milliseconds m_patience;
  std::shared_ptr<const Waiting> m_waiting;
  bool m_inAction = false, m_inTurn = false, m_waits = true;
  Stop m_stop = Stop::kNothing;
  bool m_answer = true;          // of the program's last turn
  bool m_stopped = false;        // the call under way was told to end
  std::exception_ptr m_failure;  // no exception may pass through SQLite
  Clock::time_point m_nextTurn, m_entered, m_lockSeen;
  Clock::duration m_waited{};
};

}  // namespace kxrestore::engine::sqlite
