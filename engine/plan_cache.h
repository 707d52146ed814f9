// The plans that a session keeps: a statement is translated once, and statements that differ in their
// literals only share one plan.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "engine/database.h"
#include "engine/jet_sql/reading/literals.h"

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
  // The plan for a text and the columns that are read of its result, or what `make` returns for the text with
  // its literals taken out.
  template <class Make>
  std::shared_ptr<Plan> Find(std::string_view source, StatementUse use, const ColumnNames& read, Make make) {
    if (!jet_sql::ExtractLiterals(source, m_extracted)) KeepText(source);
    std::string& key = m_extracted.key;
    const std::size_t textSize = key.size();
    key.push_back(static_cast<char>('0' + static_cast<int>(use)));
    for (const std::string_view name : read) key.append(name).push_back('\0');
    const auto found = m_plans.find(key);
    if (found != m_plans.end()) return found->second;
    const bool parameters = m_extracted.count > 0;
    auto plan = make(parameters ? std::string_view(key).substr(0, textSize) : source);
    if (m_plans.size() >= kMostPlans) m_plans.clear();
    return m_plans.emplace(key, std::move(plan)).first->second;
  }

  // Of the text that a plan was looked for last.
  const jet_sql::ExtractedLiterals& Literals() const { return m_extracted; }

  // Takes back a prepared statement of the plan.
  template <class Statement>
  static void Keep(Plan& plan, Statement statement) {
    if (plan.updates.size() > kMostUpdates) plan.updates.clear();
    if (plan.current && plan.keepsPrepared && plan.idle.size() < 2) plan.idle.push_back(std::move(statement));
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

  void KeepText(std::string_view source) {
    m_extracted.key = source;
    m_extracted.count = 0;
  }

  std::unordered_map<std::string, std::shared_ptr<Plan>> m_plans;
  jet_sql::ExtractedLiterals m_extracted;
};

}  // namespace kxrestore::engine
