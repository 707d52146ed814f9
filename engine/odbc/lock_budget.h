// The time that one user action may still spend waiting for others' locks, in total.
#pragma once

#include <algorithm>
#include <chrono>

namespace kxrestore::engine::odbc {

class LockBudget {
 public:
  using Milliseconds = std::chrono::milliseconds;
  explicit LockBudget(Milliseconds total) : m_left(total) {}

  Milliseconds Left() const { return m_left; }
  bool IsSpent() const { return m_left.count() == 0; }
  void Spend(Milliseconds time) { m_left = std::max(m_left - time, Milliseconds(0)); }

 private:
  Milliseconds m_left;
};

}  // namespace kxrestore::engine::odbc
