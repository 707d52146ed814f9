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

class Reader {
 public:
  explicit Reader(TableFacts& facts) : m_facts(facts) {}

  // Returns whether anything was inlined.
  bool Read(SelectStatement& statement, int depth) {
    bool changed = false;
    for (SelectCore& core : statement.cores) {
      for (JoinChain& chain : core.from) changed = Read(chain, depth) || changed;
    }
    return changed;
  }

 private:
  bool Read(JoinChain& chain, int depth) {
    bool changed = Read(chain.first, depth);
    for (Join& join : chain.joins) changed = Read(join.table, depth) || changed;
    return changed;
  }

  bool Read(TableRef& table, int depth) {
    if (table.nested) return Read(*table.nested, depth);
    if (table.query) return Read(*table.query, depth);
    if (depth == kMaxSavedQueryDepth) return false;
    std::optional<SelectStatement> query = ReadSavedQuery(m_facts, table.name);
    if (!query) return false;
    const bool groups = GroupsWithoutCase(*query);
    if (!Read(*query, depth + 1) && !groups) return false;
    if (table.alias.empty()) table.alias = std::move(table.name);
    table.name.clear();
    table.query = std::make_unique<SelectStatement>(std::move(*query));
    return true;
  }

  TableFacts& m_facts;
};

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
  Reader(facts).Read(statement, 0);
}

}  // namespace kxrestore::engine::jet_sql
