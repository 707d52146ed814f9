// The plans that a session keeps: a statement is translated once, and statements that differ in their values
// only share one plan.
#pragma once

#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "engine/database.h"

namespace kxrestore::engine {

enum class StatementUse { kSnapshot, kDynaset, kAction };

// What the plans of all back ends have. They also have `idle`, prepared statements that nobody uses, and
// `updates`, one for each choice of columns.
struct CachedPlan {
  bool keepsPrepared = true;  // false where the server does not tell that a view is another now
  bool current = true;        // false once the schema was changed under it
};

template <class Plan>
class PlanCache {
 public:
  // The plan for the text of a statement and the columns that are read of its result, or what `make` returns.
  template <class Make>
  std::shared_ptr<Plan> Find(const Sql& sql, StatementUse use, const ColumnNames& read, Make make) {
    m_values = sql.Values();
    m_key = sql.Text();
    m_key.push_back(static_cast<char>('0' + static_cast<int>(use)));
    for (const std::string_view name : read) m_key.append(name).push_back('\0');
    const auto found = m_plans.find(m_key);
    if (found != m_plans.end()) return found->second;
    auto plan = make();
    if (m_plans.size() >= kMostPlans) m_plans.clear();
    return m_plans.emplace(m_key, std::move(plan)).first->second;
  }

  // Of the statement that a plan was looked for last.
  const std::vector<Value>& Values() const { return m_values; }

  // Takes back a prepared statement of the plan. Destructors call it: without memory the statement just goes.
  template <class Statement>
  static void Keep(Plan& plan, Statement statement) noexcept {
    if (plan.updates.size() > kMostUpdates) plan.updates.clear();
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
  }

 private:
  static constexpr std::size_t kMostPlans = 64, kMostUpdates = 16;

  std::unordered_map<std::string, std::shared_ptr<Plan>> m_plans;
  std::string m_key;
  std::vector<Value> m_values;
};

}  // namespace kxrestore::engine
