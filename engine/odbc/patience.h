// Lets a call of the driver take its time on a thread of its own while the thread that wants its result gives
// whoever waits a turn.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "engine/database.h"

namespace kxrestore::engine::odbc {

class Patience {
 public:
  explicit Patience(std::shared_ptr<const Waiting> waiting) : m_waiting(std::move(waiting)) {}
  ~Patience();
  Patience(const Patience&) = delete;
  Patience& operator=(const Patience&) = delete;

  // Whether anybody wants turns; without, a call may as well be made directly.
  bool IsWanted() const { return m_waiting && *m_waiting && !m_inTurn; }

  // Runs `call` to its end. When it is not to go on, `cancel` is called once, if there is one; whether it
  // was. What a turn throws is thrown once the call has ended.
  bool Run(const std::function<void()>& call, const std::function<void()>& cancel);

  // Gives a turn where the last is long enough ago: for work of many short calls.
  void GiveTurn();

 private:
  void Work();
  bool TakeTurn(std::exception_ptr& failure);

  std::shared_ptr<const Waiting> m_waiting;
  bool m_inTurn = false;
  std::chrono::steady_clock::time_point m_lastTurn;
  std::thread m_thread;  // of the first call that needs it, until the end
  std::mutex m_mutex;
  std::condition_variable m_changed;
  const std::function<void()>* m_call = nullptr;  // to be made, or being made
  bool m_ending = false;
};

}  // namespace kxrestore::engine::odbc
