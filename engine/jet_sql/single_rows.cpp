#include "engine/jet_sql/single_rows.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/text.h"
#include "engine/jet_sql/lexer.h"
#include "engine/jet_sql/saved_query.h"

namespace kxrestore::engine::jet_sql {
namespace {

// ---- what stands in a statement

bool IsNamed(const TableRef& table) {
  return !table.query && !table.nested;
}

const std::string& NameOf(const TableRef& table) {
  return table.alias.empty() ? table.name : table.alias;
}

bool IsColumnOf(const Expression& expression, const TableRef& table) {
  return expression.kind == ExpressionKind::kColumn && EqualIgnoringCase(expression.qualifier, NameOf(table));
}

bool IsPlainCore(const SelectStatement& statement) {
  if (statement.cores.size() != 1) return false;
  const SelectCore& core = statement.cores.front();
  return !core.distinct && !core.top && !core.having && core.from.size() == 1;
}

// The column of Max(column), Min(column) or First(column), or the column itself: in a group of one row they
// are the same.
const Expression& WithoutAggregate(const Expression& expression) {
  if (expression.kind == ExpressionKind::kFunction && expression.args.size() == 1 && !expression.distinct) {
    for (const char* name : {"MAX", "MIN", "FIRST"}) {
      if (IsKeyword(expression.text, name)) return *expression.args.front();
    }
  }
  return expression;
}

// The two sides of left = right.
std::optional<std::pair<const Expression*, const Expression*>> EqualSides(const ExpressionPtr& condition) {
  if (!condition || condition->kind != ExpressionKind::kCompare || condition->operators.front() != "=") {
    return std::nullopt;
  }
  return std::pair(condition->args[0].get(), condition->args[1].get());
}

const SelectItem* FindItem(const SelectCore& core, std::string_view name) {
  const SelectItem* found = nullptr;
  for (const SelectItem& item : core.items) {
    if (!item.expression) return nullptr;
    std::string_view itemName = item.alias;
    if (itemName.empty() && item.expression->kind == ExpressionKind::kColumn)
      itemName = item.expression->text;
    if (!EqualIgnoringCase(itemName, name)) continue;
    if (found != nullptr) return nullptr;
    found = &item;
  }
  return found;
}

ExpressionPtr MakeColumn(std::string_view table, std::string_view name) {
  auto column = std::make_unique<Expression>();
  column->kind = ExpressionKind::kColumn;
  column->qualifier = table;
  column->text = name;
  return column;
}

// A copy whose columns are what `replace` makes of them. Nothing when one of them has no replacement, or for
// anything that means something else in another place.
using Replace = std::function<ExpressionPtr(const Expression& column)>;

ExpressionPtr Copy(const Expression& from, const Replace& replace) {
  switch (from.kind) {
    case ExpressionKind::kColumn:
      return replace(from);
    case ExpressionKind::kNull:
    case ExpressionKind::kBoolean:
    case ExpressionKind::kNumber:
    case ExpressionKind::kText:
    case ExpressionKind::kDate:
    case ExpressionKind::kParameter:
    case ExpressionKind::kNot:
    case ExpressionKind::kMinus:
    case ExpressionKind::kChain:
    case ExpressionKind::kCompare:
    case ExpressionKind::kLike:
    case ExpressionKind::kBetween:
    case ExpressionKind::kIn:
    case ExpressionKind::kIsNull:
      break;
    default:
      return nullptr;
  }
  if (from.query) return nullptr;
  auto copy = std::make_unique<Expression>();
  copy->kind = from.kind;
  copy->negated = from.negated;
  copy->depth = from.depth;
  copy->number = from.number;
  copy->text = from.text;
  copy->date = from.date;
  copy->operators = from.operators;
  for (const ExpressionPtr& argument : from.args) {
    ExpressionPtr copied = Copy(*argument, replace);
    if (!copied) return nullptr;
    copy->args.push_back(std::move(copied));
  }
  return copy;
}

// A condition of a saved query that reads the same in a statement of this program: saved queries have masks
// of their own.
bool IsPlainCondition(const Expression& condition, const TableRef& table) {
  if (condition.kind == ExpressionKind::kLike) return false;
  if (condition.kind == ExpressionKind::kColumn) return IsColumnOf(condition, table);
  if (!Copy(condition, [](const Expression& column) { return MakeColumn({}, column.text); })) return false;
  return std::all_of(condition.args.begin(), condition.args.end(),
                     [&](const ExpressionPtr& argument) { return IsPlainCondition(*argument, table); });
}

bool IsGiven(const Expression& expression) {
  return expression.kind == ExpressionKind::kText || expression.kind == ExpressionKind::kParameter;
}

void SplitTerms(ExpressionPtr condition, std::vector<ExpressionPtr>& terms) {
  if (!condition) return;
  if (condition->kind == ExpressionKind::kChain && condition->operators.front() == "AND") {
    for (ExpressionPtr& term : condition->args) SplitTerms(std::move(term), terms);
  } else {
    terms.push_back(std::move(condition));
  }
}

ExpressionPtr JoinTerms(std::vector<ExpressionPtr> terms) {
  if (terms.empty()) return nullptr;
  if (terms.size() == 1) return std::move(terms.front());
  auto chain = std::make_unique<Expression>();
  chain->kind = ExpressionKind::kChain;
  chain->operators.assign(terms.size() - 1, "AND");
  chain->args = std::move(terms);
  return chain;
}

// ---- what is known of the tables

std::optional<SelectStatement> ReadPlainQuery(TableFacts& facts, const std::string& name) {
  auto query = ReadSavedQuery(facts, name);
  return query && IsPlainCore(*query) ? std::move(query) : std::nullopt;
}

// The table that a chain of joins calls so; null when there is none, or more than one.
const TableRef* FindTable(const JoinChain& chain, std::string_view name) {
  const TableRef* found = nullptr;
  bool several = false;
  const auto look = [&](const TableRef& table) {
    const TableRef* match = table.nested                             ? FindTable(*table.nested, name)
                            : EqualIgnoringCase(NameOf(table), name) ? &table
                                                                     : nullptr;
    several = several || (found != nullptr && match != nullptr);
    if (match != nullptr) found = match;
  };
  look(chain.first);
  for (const Join& join : chain.joins) look(join.table);
  return several ? nullptr : found;
}

// The table of which each row comes out of a chain of joins at most once: every other one is joined by its
// row key.
const TableRef* SingleRowTable(TableFacts& facts, const JoinChain& chain) {
  const TableRef* base = chain.first.nested  ? SingleRowTable(facts, *chain.first.nested)
                         : chain.first.query ? nullptr
                                             : &chain.first;
  if (base == nullptr) return nullptr;
  for (const Join& join : chain.joins) {
    const auto sides = EqualSides(join.on);
    if (join.type == JoinType::kCross || !IsNamed(join.table) || !sides) return nullptr;
    const bool mirrored = IsColumnOf(*sides->second, join.table);
    const Expression& own = mirrored ? *sides->second : *sides->first;
    const Expression& other = mirrored ? *sides->first : *sides->second;
    if (!IsColumnOf(own, join.table) || !facts.IsRowKey(join.table.name, own.text)) return nullptr;
    if (other.kind != ExpressionKind::kColumn || IsColumnOf(other, join.table)) return nullptr;
    const TableRef* joined = FindTable(chain, other.qualifier);
    if (joined == nullptr || !facts.ComparesExactly(joined->name, other.text)) return nullptr;
  }
  return FindTable(chain, NameOf(*base)) == base ? base : nullptr;
}

// Functions that give one value for each row; a server may have others.
bool GivesOneValue(const Expression& expression) {
  if (expression.query) return false;
  if (expression.kind == ExpressionKind::kFunction) {
    const auto isCalled = [&](const char* name) { return IsKeyword(expression.text, name); };
    static constexpr const char* kNames[] = {
        "COALESCE", "NZ",  "IIF",  "ISNULL", "IFNULL", "NULLIF", "UCASE", "LCASE",  "LEFT",   "MID",
        "RIGHT",    "LEN", "CSTR", "CLNG",   "UPPER",  "LOWER",  "TRIM",  "SUBSTR", "LENGTH", "REPLACE"};
    if (std::none_of(std::begin(kNames), std::end(kNames), isCalled)) return false;
  }
  return std::all_of(expression.args.begin(), expression.args.end(),
                     [](const ExpressionPtr& argument) { return GivesOneValue(*argument); });
}

struct TableColumn {
  std::string table;
  std::string column;
};

// Rows that are each made of one row of a table, which gives no more than that one: the table itself, or a
// saved query.
class SingleRowSource {
 public:
  SingleRowSource(TableFacts& facts, const std::string& name) : m_facts(facts), m_name(name) {
    m_query = ReadPlainQuery(facts, name);
    if (!m_query) return;
    const SelectCore& core = m_query->cores.front();
    const auto plain = [](const SelectItem& item) {
      return item.expression && GivesOneValue(*item.expression);
    };
    if (core.groupBy.empty() && std::all_of(core.items.begin(), core.items.end(), plain)) {
      m_base = SingleRowTable(facts, core.from.front());
    }
  }

  // The column of the table that a column of the rows is.
  std::optional<TableColumn> Find(const std::string& column) const {
    if (!m_query && m_facts.HasColumn(m_name, column)) return TableColumn{m_name, column};
    if (m_base == nullptr) return std::nullopt;
    const SelectItem* item = FindItem(m_query->cores.front(), column);
    if (item == nullptr || !IsColumnOf(*item->expression, *m_base)) return std::nullopt;
    return TableColumn{m_base->name, item->expression->text};
  }

 private:
  TableFacts& m_facts;
  std::string m_name;
  std::optional<SelectStatement> m_query;
  const TableRef* m_base = nullptr;  // in m_query
};

// ---- the two saved queries

class Listing {
 public:
  explicit Listing(TableFacts& facts) : m_facts(facts) {}

  // The same rows without the outer groups.
  std::optional<SelectStatement> Rewrite(SelectStatement& listing) {
    if (!IsPlainCore(listing) || !listing.orderBy.empty()) return std::nullopt;
    const SelectCore& core = listing.cores.front();
    if (!core.groupBy.empty() || !core.from.front().joins.empty() || !IsNamed(core.from.front().first)) {
      return std::nullopt;
    }
    m_listed = &core.from.front().first;
    auto outer = ReadPlainQuery(m_facts, m_listed->name);
    if (!outer || !ReadOuter(outer->cores.front()) || !ReadInner()) return std::nullopt;
    const SingleRowSource source(m_facts, m_rows->name);
    const auto key = source.Find(m_key);
    if (!key || !m_facts.IsRowKey(key->table, key->column)) return std::nullopt;
    const auto grouped = source.Find(m_grouped);
    return Assemble(core, *outer, grouped && m_facts.IsExactText(grouped->table, grouped->column));
  }

 private:
  bool ReadOuter(const SelectCore& outer) {
    const JoinChain& chain = outer.from.front();
    if (outer.groupBy.size() != 1 || chain.joins.size() != 1 || !IsNamed(chain.first)) return false;
    const Join& join = chain.joins.front();
    if (join.type != JoinType::kInner || !IsNamed(join.table)) return false;
    if (EqualIgnoringCase(NameOf(chain.first), NameOf(join.table))) return false;
    const Expression& grouped = GroupedExpression(*outer.groupBy.front());
    const bool first = IsColumnOf(grouped, chain.first);
    if (!first && !IsColumnOf(grouped, join.table)) return false;
    m_rows = first ? &chain.first : &join.table;
    m_newest = first ? &join.table : &chain.first;
    m_grouped = grouped.text;
    const auto sides = EqualSides(join.on);
    if (!sides) return false;
    const bool mirrored = IsColumnOf(*sides->second, *m_rows);
    const Expression& key = mirrored ? *sides->second : *sides->first;
    const Expression& newest = mirrored ? *sides->first : *sides->second;
    if (!IsColumnOf(key, *m_rows) || !IsColumnOf(newest, *m_newest)) return false;
    m_key = key.text;
    m_newestKey = newest.text;
    return !outer.where || IsPlainCondition(*outer.where, *m_rows);
  }

  bool ReadInner() {
    m_inner = ReadPlainQuery(m_facts, m_newest->name);
    if (!m_inner || !m_inner->orderBy.empty()) return false;
    SelectCore& core = m_inner->cores.front();
    const TableRef& source = core.from.front().first;
    if (core.groupBy.size() != 1 || !core.from.front().joins.empty() || !IsNamed(source)) return false;
    if (!EqualIgnoringCase(source.name, m_rows->name)) return false;
    const Expression& grouped = GroupedExpression(*core.groupBy.front());
    if (!IsColumnOf(grouped, source) || !EqualIgnoringCase(grouped.text, m_grouped)) return false;
    if (core.where && !IsPlainCondition(*core.where, source)) return false;
    const SelectItem* item = FindItem(core, m_newestKey);
    if (item == nullptr || !IsKeyword(item->expression->text, "MAX")) return false;
    const Expression& key = WithoutAggregate(*item->expression);
    return &key != item->expression.get() && IsColumnOf(key, source) && EqualIgnoringCase(key.text, m_key);
  }

  // The column of the rows behind a column of the listed query; empty when there is none such.
  const Expression* Behind(const SelectCore& outer, const Expression& column) const {
    if (!column.qualifier.empty() && !IsColumnOf(column, *m_listed)) return nullptr;
    const SelectItem* item = FindItem(outer, column.text);
    if (item == nullptr) return nullptr;
    const Expression& behind = WithoutAggregate(*item->expression);
    return IsColumnOf(behind, *m_rows) ? &behind : nullptr;
  }

  bool AddItems(const SelectCore& listing, const SelectCore& outer, SelectCore& result) const {
    const auto add = [&](const Expression& column, const std::string& alias) {
      const Expression* behind = Behind(outer, column);
      if (behind == nullptr) return false;
      SelectItem& item = result.items.emplace_back();
      item.expression = MakeColumn(NameOf(*m_rows), behind->text);
      item.alias = alias;
      return true;
    };
    for (const SelectItem& item : listing.items) {
      if (item.expression) {
        if (item.expression->kind != ExpressionKind::kColumn) return false;
        if (!add(*item.expression, item.alias.empty() ? item.expression->text : item.alias)) return false;
        continue;
      }
      if (!item.starQualifier.empty() && !EqualIgnoringCase(item.starQualifier, NameOf(*m_listed))) {
        return false;
      }
      for (const SelectItem& each : outer.items) {
        if (each.alias.empty() || !add(*MakeColumn({}, each.alias), each.alias)) return false;
      }
    }
    return true;
  }

  // In the order of the saved query: by place where the dialect would do something else to the sort keys.
  bool AddOrder(const SelectStatement& outer, SelectStatement& result) const {
    const auto& items = result.cores.front().items;
    for (const OrderItem& order : outer.orderBy) {
      const Expression& column = WithoutAggregate(*order.expression);
      const auto same = std::find_if(items.begin(), items.end(), [&](const SelectItem& item) {
        return IsColumnOf(column, *m_rows) && EqualIgnoringCase(item.expression->text, column.text);
      });
      if (same == items.end()) return false;
      OrderItem& added = result.orderBy.emplace_back();
      if (m_facts.SortsAlike()) {
        added.expression = MakeColumn(NameOf(*m_rows), same->expression->text);
      } else {
        added.expression = std::make_unique<Expression>();
        added.expression->kind = ExpressionKind::kNumber;
        added.expression->text = std::to_string(std::distance(items.begin(), same) + 1);
      }
      added.descending = order.descending;
    }
    return true;
  }

  // A mask of the grouped column keeps or drops whole groups, as neither minds case, so it may stand before
  // the grouping.
  bool AddTerm(const SelectCore& outer, const Expression& term, bool mayGoInside,
               std::vector<ExpressionPtr>& inside, std::vector<ExpressionPtr>& outside) const {
    ExpressionPtr copy = Copy(term, [&](const Expression& column) {
      const Expression* behind = Behind(outer, column);
      return behind == nullptr ? nullptr : MakeColumn(NameOf(*m_rows), behind->text);
    });
    if (!copy) return false;
    const bool isMask = copy->kind == ExpressionKind::kLike && IsColumnOf(*copy->args[0], *m_rows) &&
                        EqualIgnoringCase(copy->args[0]->text, m_grouped) && IsGiven(*copy->args[1]);
    if (!mayGoInside || !isMask) {
      outside.push_back(std::move(copy));
      return true;
    }
    const std::string& source = NameOf(m_inner->cores.front().from.front().first);
    inside.push_back(Copy(*copy, [&](const Expression& column) { return MakeColumn(source, column.text); }));
    return true;
  }

  std::optional<SelectStatement> Assemble(const SelectCore& listing, SelectStatement& outer,
                                          bool mayGoInside) {
    SelectCore& outerCore = outer.cores.front();
    SelectCore& innerCore = m_inner->cores.front();
    SelectStatement result;
    SelectCore& core = result.cores.emplace_back();
    if (!AddItems(listing, outerCore, core) || !AddOrder(outer, result)) return std::nullopt;

    std::vector<ExpressionPtr> inside, outside;
    if (listing.where) {
      const auto same = [](const Expression& column) { return MakeColumn(column.qualifier, column.text); };
      ExpressionPtr condition = Copy(*listing.where, same);
      if (!condition) return std::nullopt;
      std::vector<ExpressionPtr> terms;
      SplitTerms(std::move(condition), terms);
      for (const ExpressionPtr& term : terms) {
        if (!AddTerm(outerCore, *term, mayGoInside, inside, outside)) return std::nullopt;
      }
    }
    SplitTerms(std::move(innerCore.where), inside);
    innerCore.where = JoinTerms(std::move(inside));
    SplitTerms(std::move(outerCore.where), outside);
    core.where = JoinTerms(std::move(outside));

    // m_newest points into the chain that moves.
    TableRef& newest = m_newest == &outerCore.from.front().first ? outerCore.from.front().first
                                                                 : outerCore.from.front().joins.front().table;
    newest.alias = NameOf(newest);
    newest.name.clear();
    newest.query = std::make_unique<SelectStatement>(std::move(*m_inner));
    core.from = std::move(outerCore.from);
    return result;
  }

  TableFacts& m_facts;
  const TableRef* m_listed = nullptr;
  const TableRef* m_rows = nullptr;
  const TableRef* m_newest = nullptr;
  std::string m_grouped, m_key, m_newestKey;
  std::optional<SelectStatement> m_inner;
};

}  // namespace

void RemoveGroupsOfSingleRows(TableFacts& facts, SelectStatement& listing) {
  if (auto rewritten = Listing(facts).Rewrite(listing)) listing = std::move(*rewritten);
}

}  // namespace kxrestore::engine::jet_sql
