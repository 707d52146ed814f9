// A session's cache of translated statements. Statements that differ only in their values share a plan.
#pragma once

#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "engine/database.h"
#include "engine/plan.h"

namespace kxrestore::engine {

enum class StatementUse { kSnapshot, kDynaset, kAction };

template <class Plan>
class PlanCache {
 public:
  // The cached plan for this text and these result columns; otherwise calls `make` and caches its result.
  template <class Make>
  std::shared_ptr<Plan> Find(const Sql& sql, StatementUse use, const ColumnNames& read, Make make) {
    m_key = sql.Text();
    m_key.push_back(static_cast<char>('0' + static_cast<int>(use)));
    for (const std::string_view name : read) m_key.append(name).push_back('\0');
    if (m_latest && m_key == m_latestKey) return m_latest;  // as in marking, file by file
    auto found = m_plans.find(m_key);
    if (found == m_plans.end()) {
      auto plan = make();
      if (m_plans.size() >= kMaxPlans) m_plans.clear();
      found = m_plans.emplace(m_key, std::move(plan)).first;
    }
    m_latest = found->second;
    m_latestKey = m_key;
    return m_latest;
  }

  // Returns a prepared statement to the plan. Called by destructors: without memory the statement is dropped.
  template <class Statement>
  static void Keep(Plan& plan, Statement statement) noexcept {
    if (plan.updates.size() > kMaxUpdates) plan.updates.clear();
    if (!plan.current || !plan.keepsPrepared || plan.idle.size() >= 2) return;
    try {
      plan.idle.push_back(std::move(statement));
    } catch (const std::bad_alloc&) {
    }
  }

  void Forget() {
    for (const auto& [key, plan] : m_plans) {
      plan->current = false;
      plan->idle.clear();
    }
    m_plans.clear();
    m_latest.reset();
  }

 private:
  static constexpr std::size_t kMaxPlans = 64, kMaxUpdates = 16;

  std::unordered_map<std::string, std::shared_ptr<Plan>> m_plans;
  std::string m_key;
  std::shared_ptr<Plan> m_latest;
  std::string m_latestKey;
};

}  // namespace kxrestore::engine
