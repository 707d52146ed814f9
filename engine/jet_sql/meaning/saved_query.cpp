#include "engine/jet_sql/meaning/saved_query.h"

#include <algorithm>
#include <utility>

#include "base/error.h"
#include "engine/jet_sql/reading/parser.h"

namespace kxrestore::engine::jet_sql {
namespace {

constexpr int kMaxSavedQueryDepth = 32;

bool GroupsWithoutCase(const SelectStatement& query) {
  return std::any_of(query.cores.begin(), query.cores.end(), [](const SelectCore& core) {
    return std::any_of(core.groupBy.begin(), core.groupBy.end(),
                       [](const ExpressionPtr& key) { return &GroupedExpression(*key) != key.get(); });
  });
}

// Returns whether anything was inlined.
bool Inline(TableFacts& facts, SelectStatement& statement, int depth) {
  bool changed = false;
  const auto read = [&](TableRef& table) {
    if (table.query) {
      changed = Inline(facts, *table.query, depth) || changed;
      return;
    }
    if (depth == kMaxSavedQueryDepth) return;
    std::optional<SelectStatement> query = ReadSavedQuery(facts, table.name);
    if (!query) return;
    const bool groups = GroupsWithoutCase(*query);
    if (!Inline(facts, *query, depth + 1) && !groups) return;
    if (table.alias.empty()) table.alias = std::move(table.name);
    table.name.clear();
    table.query = std::make_unique<SelectStatement>(std::move(*query));
    changed = true;
  };
  for (SelectCore& core : statement.cores) {
    for (JoinChain& chain : core.from) ForEachTable(chain, read);
  }
  return changed;
}

}  // namespace

std::optional<SelectStatement> ReadSavedQuery(TableFacts& facts, const std::string& name) {
  const auto text = facts.SavedQuery(name);
  if (!text) return std::nullopt;
  try {
    Statement statement = Parse(*text);
    auto* select = std::get_if<SelectStatement>(&statement);
    if (select == nullptr) return std::nullopt;
    return std::move(*select);
  } catch (const Error&) {
    return std::nullopt;
  }
}

void ReadGroupingQueriesByText(TableFacts& facts, SelectStatement& statement) {
  Inline(facts, statement, 0);
}

}  // namespace kxrestore::engine::jet_sql
