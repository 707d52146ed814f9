#include "engine/odbc/patience.h"

#include <utility>

namespace kxrestore::engine::odbc {
namespace {

constexpr auto kTurnEvery = std::chrono::milliseconds(20);

}  // namespace

Patience::~Patience() {
  {
    const std::lock_guard lock(m_mutex);
    m_ending = true;
  }
  m_changed.notify_all();
  if (m_thread.joinable()) m_thread.join();
}

void Patience::Work() {
  std::unique_lock lock(m_mutex);
  for (;;) {
    m_changed.wait(lock, [this] { return m_call != nullptr || m_ending; });
    if (m_call == nullptr) return;
    const auto& call = *m_call;
    lock.unlock();
    call();
    lock.lock();
    m_call = nullptr;
    m_changed.notify_all();
  }
}

bool Patience::TakeTurn(std::exception_ptr& failure) {
  m_inTurn = true;
  bool goOn = false;
  try {
    goOn = (*m_waiting)();
  } catch (...) {
    failure = std::current_exception();
  }
  m_inTurn = false;
  m_lastTurn = std::chrono::steady_clock::now();
  return goOn;
}

bool Patience::Run(const std::function<void()>& call, const std::function<void()>& cancel) {
  if (!m_thread.joinable()) m_thread = std::thread([this] { Work(); });
  std::exception_ptr failure;
  bool canceled = false;
  std::unique_lock lock(m_mutex);
  m_call = &call;
  m_changed.notify_all();
  while (!m_changed.wait_for(lock, kTurnEvery, [this] { return m_call == nullptr; })) {
    lock.unlock();
    if (!failure && !TakeTurn(failure) && cancel && !canceled) {
      canceled = true;
      cancel();
    }
    lock.lock();
  }
  lock.unlock();
  if (failure) std::rethrow_exception(failure);
  return canceled;
}

void Patience::GiveTurn() {
  if (!IsWanted() || std::chrono::steady_clock::now() < m_lastTurn + kTurnEvery) return;
  std::exception_ptr failure;
  TakeTurn(failure);
  if (failure) std::rethrow_exception(failure);
}

}  // namespace kxrestore::engine::odbc
