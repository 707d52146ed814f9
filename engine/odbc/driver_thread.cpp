#include "engine/odbc/driver_thread.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <limits>
#include <mutex>
#include <optional>
#include <system_error>
#include <utility>

#ifdef _WIN32
#include <windows.h>
#endif

#include "engine/error_numbers.h"

namespace kxrestore::engine::odbc {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kTurnInterval(20);
constexpr milliseconds kCleanupTime(140);  // after which the thread is abandoned

// An abandoned thread returns into this module, so keep the module loaded.
void KeepModuleLoaded() noexcept {
#ifdef _WIN32
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                     reinterpret_cast<LPCWSTR>(&KeepModuleLoaded), &module);
#endif
}

// Sleeping and being woken takes both threads longer than a short call to a nearby server, so each spins for
// the other's flag first. If that is in vain, because the server or the machine is slow, the next calls skip
// it, twice as many each time.
class SpinWait {
 public:
  void WaitFor(const std::atomic<bool>& flag) {
    if (m_skipped > 0) {
      --m_skipped;
      return;
    }
    const auto until = Clock::now() + kSpinTime;
    while (!flag.load(std::memory_order_acquire)) {
      if (Clock::now() < until) continue;
      m_skips = std::min(2 * m_skips, kMaxSkips);
      m_skipped = m_skips;
      return;
    }
    m_skips = kMinSkips;
  }

 private:
  static constexpr std::chrono::microseconds kSpinTime{250};
  static constexpr int kMinSkips = 8, kMaxSkips = 1024;  // calls
  int m_skips = kMinSkips;
  int m_skipped = std::thread::hardware_concurrency() < 2 ? std::numeric_limits<int>::max() : 0;
};

}  // namespace

struct DriverThread::State {
  std::mutex mutex;
  std::condition_variable work, done;
  Work call, tidy, last;
  std::exception_ptr failure;  // of the call
  bool busy = false;           // a call is requested or running
  bool untidy = false;
  bool finishing = false;  // no further calls
  bool ended = false;
  bool canceling = false;                                 // the call is being canceled
  std::atomic<bool> requested = false, answered = false;  // the latest call, for the spinning
  SpinWait forRequest, forAnswer;

  bool IsSettled() const { return !busy && !canceling; }
};

DriverThread::DriverThread(std::shared_ptr<const Waiting> waiting, Work tidy, Work last)
    : m_waiting(std::move(waiting)), m_state(std::make_shared<State>()) {
  m_state->tidy = std::move(tidy);
  m_state->last = std::move(last);
  try {
    m_thread = std::thread([state = m_state] { Serve(*state); });
  } catch (const std::system_error&) {
    Raise(kxrestore::error_number::kOutOfMemory, "Out of memory");
  }
}

DriverThread::~DriverThread() {
  if (!m_thread.joinable()) return;
  std::unique_lock lock(m_state->mutex);
  m_state->finishing = true;
  m_state->work.notify_all();
  const auto until = Clock::now() + kCleanupTime;
  while (!m_state->done.wait_for(lock, kTurnInterval, [this] { return m_state->ended; })) {
    if (Clock::now() >= until) {
      Abandon();
      return;
    }
    lock.unlock();
    std::exception_ptr ignored;
    if (!m_inTurn) Turn(ignored);
    lock.lock();
  }
  lock.unlock();
  m_thread.join();
}

void DriverThread::Serve(State& state) {
  std::unique_lock lock(state.mutex);
  for (;;) {
    lock.unlock();
    state.forRequest.WaitFor(state.requested);
    lock.lock();
    state.work.wait(lock, [&] { return state.busy || state.untidy || state.finishing; });
    const bool asked = state.busy;
    if (!asked && !state.untidy) break;
    state.untidy = false;
    lock.unlock();
    state.tidy();
    lock.lock();
    if (state.finishing) break;
    if (!asked) continue;
    {
      Work call = std::move(state.call);
      lock.unlock();
      std::exception_ptr failure;
      try {
        call();
      } catch (...) {
        failure = std::current_exception();
      }
      call = nullptr;
      lock.lock();
      state.failure = std::move(failure);
    }
    state.busy = false;
    state.requested = false;
    state.answered = true;
    state.done.notify_all();
  }
  state.work.wait(lock, [&] { return !state.canceling; });
  lock.unlock();
  state.call = nullptr;
  state.last();
  state.last = state.tidy = nullptr;
  lock.lock();
  state.ended = true;
  state.done.notify_all();
}

void DriverThread::Abandon() noexcept {
  KeepModuleLoaded();
  m_state->finishing = true;
  m_thread.detach();
}

bool DriverThread::Turn(std::exception_ptr& failure) noexcept {
  bool goOn = true;
  if (m_waiting && *m_waiting) {
    m_inTurn = true;
    try {
      const Waiting waiting = *m_waiting;  // a copy: the callback may be replaced from inside
      goOn = waiting();
    } catch (...) {
      failure = std::current_exception();
      goOn = false;
    }
    m_inTurn = false;
  }
  m_lastTurn = Clock::now();
  return goOn;
}

DriverThread::Ending DriverThread::Run(Work call, const Limits& limits) {
  if (m_inTurn) {
    Raise(error_number::kInvalidOperation, "Invalid operation: the server is at work on another statement.");
  }
  State& state = *m_state;
  std::thread canceler;
  std::exception_ptr failure;
  std::optional<Clock::time_point> giveUp;
  std::unique_lock lock(state.mutex);
  state.call = std::move(call);
  state.busy = true;
  state.answered = false;
  state.requested = true;
  state.work.notify_one();
  lock.unlock();
  state.forAnswer.WaitFor(state.answered);
  lock.lock();
  const auto timeOut = Clock::now() + limits.wait;
  while (!state.done.wait_for(lock, kTurnInterval, [&] { return state.IsSettled(); })) {
    lock.unlock();
    std::exception_ptr raised;
    const bool goOn = Turn(raised);
    if (raised && !failure) failure = raised;
    if (!goOn && !giveUp) {
      giveUp = Clock::now() + limits.grace;
      lock.lock();
      if (limits.cancel && state.busy) {
        state.canceling = true;
        try {
          canceler = std::thread([shared = m_state, cancel = limits.cancel] {
            try {
              cancel();
            } catch (...) {  // treated like no response
            }
            const std::lock_guard guard(shared->mutex);
            shared->canceling = false;
            shared->done.notify_all();
            shared->work.notify_all();
          });
        } catch (const std::exception&) {  // no thread: abandon the call instead
          state.canceling = false;
        }
      }
    } else {
      lock.lock();
    }
    if (state.IsSettled()) break;
    const auto now = Clock::now();
    if ((giveUp && now >= *giveUp) || now >= timeOut) {
      Abandon();
      if (canceler.joinable()) canceler.detach();
      lock.unlock();
      if (failure) std::rethrow_exception(failure);
      return giveUp ? Ending::kGivenUp : Ending::kTimedOut;
    }
  }
  const std::exception_ptr thrown = std::exchange(state.failure, nullptr);
  lock.unlock();
  if (canceler.joinable()) canceler.join();
  if (thrown) std::rethrow_exception(thrown);
  if (failure) std::rethrow_exception(failure);
  return giveUp ? Ending::kStopped : Ending::kDone;
}

void DriverThread::Wake() noexcept {
  if (!m_thread.joinable()) return;
  const std::lock_guard lock(m_state->mutex);
  m_state->untidy = true;
  m_state->work.notify_one();
}

bool DriverThread::GiveTurn() {
  if (m_inTurn || Clock::now() < m_lastTurn + kTurnInterval) return true;
  std::exception_ptr failure;
  const bool goOn = Turn(failure);
  if (failure) std::rethrow_exception(failure);
  return goOn;
}

bool DriverThread::Pause(milliseconds time) {
  const auto until = Clock::now() + time;
  for (auto now = Clock::now(); now < until; now = Clock::now()) {
    std::this_thread::sleep_for(std::min<Clock::duration>(until - now, kTurnInterval));
    if (!GiveTurn()) return false;
  }
  return true;
}

}  // namespace kxrestore::engine::odbc
