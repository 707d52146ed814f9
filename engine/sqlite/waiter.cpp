#include "engine/sqlite/waiter.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

namespace kxrestore::engine::sqlite {
namespace {

constexpr auto kTurnEvery = std::chrono::milliseconds(20);
constexpr auto kFirstPause = std::chrono::milliseconds(1);
constexpr auto kPause = std::chrono::milliseconds(10);
// A commit keeps waiting this long after a stop request, which usually suffices to save the marks.
constexpr auto kCommitGrace = std::chrono::milliseconds(120);

thread_local Waiter* t_current = nullptr;

}  // namespace

Waiter* Waiter::Current() noexcept {
  return t_current;
}

void Waiter::BeginAction() {
  m_inAction = true;
  m_waited = {};
}

void Waiter::Enter(Stop stop) noexcept {
  t_current = this;
  m_stop = stop;
  m_stopped = false;
  m_answer = true;
  if (!m_inAction) m_waited = {};
  if (stop == Stop::kCommits) m_entered = Clock::now();
}

Outcome Waiter::Leave(int code) {
  t_current = nullptr;
  m_stop = Stop::kNothing;
  if (code == SQLITE_OK || code == SQLITE_ROW || code == SQLITE_DONE) return Outcome(code);
  if (m_failure) std::rethrow_exception(std::exchange(m_failure, nullptr));
  return Outcome(m_stopped ? SQLITE_INTERRUPT : code);
}

void Waiter::LeaveQuietly() noexcept {
  t_current = nullptr;
  m_stop = Stop::kNothing;
  m_failure = nullptr;
}

bool Waiter::TakeTurn() noexcept {
  m_inTurn = true;
  try {
    m_answer = (*m_waiting)();
  } catch (...) {
    m_failure = std::current_exception();
    m_answer = false;
  }
  m_inTurn = false;
  m_nextTurn = Clock::now() + kTurnEvery;
  return m_answer;
}

void Waiter::GiveTurn() noexcept {
  if (Wanted() && Clock::now() >= m_nextTurn) TakeTurn();
}

bool Waiter::GoOn() noexcept {
  GiveTurn();
  // Only once for a call, so that the rollback at its end is not refused as well.
  if (m_answer || m_stop != Stop::kWork || m_stopped) return true;
  m_stopped = true;
  return false;
}

bool Waiter::StopsWaiting(Clock::time_point now) const {
  if (m_answer || m_stop == Stop::kNothing || m_stop == Stop::kAtOnce) return false;
  return m_stop != Stop::kCommits || now - m_entered >= kCommitGrace;
}

bool Waiter::WaitForLock(bool first) noexcept {
  if (m_stop == Stop::kAtOnce) return false;
  const auto now = Clock::now();
  if (first) m_lockSeen = now;
  m_waited += now - std::exchange(m_lockSeen, now);
  // Statements leave part of the time for the commit of what they have written.
  const auto bound = m_stop == Stop::kCommits ? m_lockTimeout : m_lockTimeout - m_lockTimeout / 6;
  if (m_waited >= bound) return false;
  std::this_thread::sleep_for(first ? kFirstPause : kPause);
  GiveTurn();
  if (!StopsWaiting(Clock::now())) return true;
  if (m_stop != Stop::kCommits) m_stopped = true;
  return false;
}

void Waiter::Sleep(std::chrono::microseconds time) noexcept {
  const auto start = Clock::now();
  for (auto now = start; now < start + time; now = Clock::now()) {
    if (m_waited + (now - start) >= m_lockTimeout) break;
    std::this_thread::sleep_for(std::min<Clock::duration>(start + time - now, kPause));
    GiveTurn();
    if (StopsWaiting(now)) break;
  }
  m_waited += Clock::now() - start;
}

void Waiter::DoAside(const std::function<void()>& work) noexcept {
  if (!Wanted()) return work();
  std::mutex mutex;
  std::condition_variable changed;
  bool done = false;
  std::thread thread;
  try {
    thread = std::thread([&] {
      work();
      const std::lock_guard lock(mutex);
      done = true;
      changed.notify_one();
    });
  } catch (...) {  // no memory or no threads left
    return work();
  }
  std::unique_lock lock(mutex);
  while (!changed.wait_for(lock, kTurnEvery, [&] { return done; })) {
    lock.unlock();
    TakeTurn();
    lock.lock();
  }
  lock.unlock();
  thread.join();
}

}  // namespace kxrestore::engine::sqlite
