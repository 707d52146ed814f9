#include "engine/jet_sql/meaning/single_rows.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/text.h"
#include "engine/jet_sql/meaning/saved_query.h"
#include "engine/jet_sql/printing/printer.h"

namespace kxrestore::engine::jet_sql {
namespace {

// The two saved queries as SQLite's dialect prints them: $1 are the rows, $2 the newest key of each name, $3
// joins the two in either order, and $4 is the second sort key of the listing of all sets.
constexpr std::string_view kLatest =
    "SELECT $1.OrigName AS OrigName FROM $1 INNER JOIN $2 ON $3 WHERE $1.Status = 2 GROUP BY $1.OrigName "
    "COLLATE NOCASE ORDER BY $1.DateStamp DESC$4";
constexpr std::string_view kJoins[] = {"$1.ID = $2.ID", "$2.ID = $1.ID"};
constexpr std::string_view kSecondKeys[] = {"", ", $1.ID DESC"};
constexpr std::string_view kNewest =
    "SELECT $1.OrigName AS OrigName, Max($1.DateStamp) AS DateStamp, Max($1.ID) AS ID FROM $1 "
    "WHERE $1.Status = 2 GROUP BY $1.OrigName COLLATE NOCASE";
constexpr std::string_view kName = "OrigName", kKey = "ID";

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

// Unwraps Max, Min and First, which are the column itself in a group of one row.
ExpressionPtr& WithoutAggregate(ExpressionPtr& expression) {
  const bool wraps = expression->args.size() == 1 && !expression->distinct &&
                     (expression->function == Function::kMax || expression->function == Function::kMin ||
                      expression->function == Function::kFirst);
  return wraps ? expression->args.front() : expression;
}

void SplitTerms(ExpressionPtr condition, std::vector<ExpressionPtr>& terms) {
  if (!condition) return;
  if (condition->kind == ExpressionKind::kChain && condition->operators.front() == Operator::kAnd) {
    for (ExpressionPtr& term : condition->args) SplitTerms(std::move(term), terms);
  } else {
    terms.push_back(std::move(condition));
  }
}

ExpressionPtr JoinTerms(std::vector<ExpressionPtr> terms) {
  if (terms.size() < 2) return terms.empty() ? nullptr : std::move(terms.front());
  auto chain = std::make_unique<Expression>();
  chain->kind = ExpressionKind::kChain;
  chain->operators.assign(terms.size() - 1, Operator::kAnd);
  chain->args = std::move(terms);
  return chain;
}

std::optional<SelectStatement> ReadPlainQuery(TableFacts& facts, const std::string& name) {
  auto query = ReadSavedQuery(facts, name);
  return query && IsPlainCore(*query) ? std::move(query) : std::nullopt;
}

// ---- whether the rows of a saved query are those of a table, each no more than once

// Finds a table of a join chain by name; null if there is none or more than one.
const TableRef* FindTable(const JoinChain& chain, std::string_view name) {
  const TableRef* found = nullptr;
  bool several = false;
  ForEachTable(chain, [&](const TableRef& table) {
    if (!EqualIgnoringCase(NameOf(table), name)) return;
    several = found != nullptr;
    found = &table;
  });
  return several ? nullptr : found;
}

// The table whose rows each appear at most once, because every other table is joined by its row key; null if
// that is not certain.
const TableRef* SingleRowTable(TableFacts& facts, const JoinChain& chain) {
  const TableRef* base = chain.first.nested  ? SingleRowTable(facts, *chain.first.nested)
                         : chain.first.query ? nullptr
                                             : &chain.first;
  if (base == nullptr) return nullptr;
  for (const Join& join : chain.joins) {
    if (join.type == JoinType::kCross || !IsNamed(join.table) || !join.on) return nullptr;
    if (join.on->kind != ExpressionKind::kCompare || join.on->operators.front() != Operator::kEqual)
      return nullptr;
    const bool mirrored = IsColumnOf(*join.on->args[1], join.table);
    const Expression& own = *join.on->args[mirrored ? 1 : 0];
    const Expression& other = *join.on->args[mirrored ? 0 : 1];
    if (!IsColumnOf(own, join.table) || !facts.IsRowKey(join.table.name, own.text)) return nullptr;
    if (other.kind != ExpressionKind::kColumn || IsColumnOf(other, join.table)) return nullptr;
    const TableRef* joined = FindTable(chain, other.qualifier);
    if (joined == nullptr || !facts.ComparesExactly(joined->name, other.text)) return nullptr;
  }
  return FindTable(chain, NameOf(*base)) == base ? base : nullptr;
}

bool GivesOneValue(const Expression& expression) {
  if (expression.query) return false;
  if (expression.kind == ExpressionKind::kFunction && !FactsOf(expression.function).givesOneValue)
    return false;
  return std::all_of(expression.args.begin(), expression.args.end(),
                     [](const ExpressionPtr& argument) { return GivesOneValue(*argument); });
}

// Whether the column is a unique whole number in a table or saved query.
bool IsRowKey(TableFacts& facts, const std::string& name, std::string_view column) {
  const auto query = ReadPlainQuery(facts, name);
  if (!query) return facts.IsRowKey(name, std::string(column));
  const SelectCore& core = query->cores.front();
  const TableRef* base = SingleRowTable(facts, core.from.front());
  if (base == nullptr || !core.groupBy.empty()) return false;
  const Expression* key = nullptr;
  for (std::size_t i = 0; i < core.items.size(); ++i) {
    if (!core.items[i].expression || !GivesOneValue(*core.items[i].expression)) return false;
    if (!EqualIgnoringCase(ColumnName(core.items[i], i), column)) continue;
    if (key != nullptr) return false;
    key = core.items[i].expression.get();
  }
  return key != nullptr && IsColumnOf(*key, *base) && facts.IsRowKey(base->name, key->text);
}

// ---- the two saved queries

// Compares the trees in the form in which SQLite keeps them, without First().
bool IsSame(const SelectStatement& query, const PrintedSql& expected) {
  return EqualIgnoringCase(PrintSelect(query, SqliteDialect(true)), expected.Text());
}

// The listed columns may be any.
bool IsLatest(SelectStatement& query, const std::string& rows, const PrintedSql (&names)[2]) {
  std::vector<SelectItem> items;
  items.swap(query.cores.front().items);
  SelectItem& name = query.cores.front().items.emplace_back();
  name.expression = MakeColumn(rows, std::string(kName));
  name.alias = kName;
  bool isSame = false;
  for (const std::string_view join : kJoins) {
    for (const std::string_view key : kSecondKeys) {
      const PrintedSql parts[] = {names[0], names[1], Filled(join, names), Filled(key, names)};
      isSame = isSame || IsSame(query, Filled(kLatest, parts));
    }
  }
  query.cores.front().items = std::move(items);
  return isSame;
}

// Turns aggregates into plain columns and hoists the sort keys into the listing. They become column
// positions, because the listing cannot name the tables of the saved query.
bool Flatten(SelectStatement& query, const TableRef& rows, SelectStatement& listing) {
  SelectCore& core = query.cores.front();
  for (SelectItem& item : core.items) {
    if (!item.expression || item.alias.empty()) return false;
    ExpressionPtr column = std::move(WithoutAggregate(item.expression));
    item.expression = std::move(column);
    if (!IsColumnOf(*item.expression, rows)) return false;
  }
  for (OrderItem& order : query.orderBy) {
    const Expression& column = *WithoutAggregate(order.expression);
    const auto same = std::find_if(core.items.begin(), core.items.end(), [&](const SelectItem& item) {
      return EqualIgnoringCase(item.expression->text, column.text);
    });
    if (same == core.items.end()) {
      listing.orderBy.clear();
      return false;
    }
    OrderItem& added = listing.orderBy.emplace_back();
    added.expression = std::make_unique<Expression>();
    added.expression->kind = ExpressionKind::kNumber;
    added.expression->text = std::to_string(std::distance(core.items.begin(), same) + 1);
    added.descending = order.descending;
  }
  query.orderBy.clear();
  core.groupBy.clear();
  return true;
}

// A mask on the name keeps or drops whole groups, so it can filter before the grouping.
void MoveMasks(SelectCore& listing, SelectCore& newest) {
  const TableRef& listed = listing.from.front().first;
  std::vector<ExpressionPtr> terms, inside, outside;
  SplitTerms(std::move(listing.where), terms);
  SplitTerms(std::move(newest.where), inside);
  for (ExpressionPtr& term : terms) {
    Expression* name = term->kind == ExpressionKind::kLike ? term->args[0].get() : nullptr;
    const bool isMask =
        name != nullptr && name->kind == ExpressionKind::kColumn &&
        (name->qualifier.empty() || IsColumnOf(*name, listed)) && EqualIgnoringCase(name->text, kName) &&
        (term->args[1]->kind == ExpressionKind::kText || term->args[1]->kind == ExpressionKind::kParameter);
    if (isMask) name->qualifier = NameOf(newest.from.front().first);
    (isMask ? inside : outside).push_back(std::move(term));
  }
  newest.where = JoinTerms(std::move(inside));
  listing.where = JoinTerms(std::move(outside));
}

bool IsPlainListing(const SelectStatement& listing) {
  if (!IsPlainCore(listing) || !listing.orderBy.empty()) return false;
  const SelectCore& core = listing.cores.front();
  return core.groupBy.empty() && core.items.size() == 1 && !core.items.front().expression &&
         core.from.front().joins.empty() && IsNamed(core.from.front().first);
}

}  // namespace

void RemoveGroupsOfSingleRows(TableFacts& facts, SelectStatement& listing) {
  if (!IsPlainListing(listing)) return;
  TableRef& listed = listing.cores.front().from.front().first;
  auto latest = ReadPlainQuery(facts, listed.name);
  if (!latest || latest->cores.front().from.front().joins.size() != 1) return;
  JoinChain& chain = latest->cores.front().from.front();
  TableRef& rows = chain.first;
  TableRef& newest = chain.joins.front().table;
  for (const TableRef* table : {&rows, &newest}) {
    if (!IsNamed(*table) || !table->alias.empty()) return;
  }
  const SqliteDialect dialect(true);
  const PrintedSql names[] = {dialect.Identifier(rows.name), dialect.Identifier(newest.name)};
  if (!IsLatest(*latest, rows.name, names)) return;
  auto keys = ReadPlainQuery(facts, newest.name);
  if (!keys || !IsSame(*keys, Filled(kNewest, names))) return;
  if (!IsRowKey(facts, rows.name, kKey) || !Flatten(*latest, rows, listing)) return;

  if (facts.MasksKeepGroups()) MoveMasks(listing.cores.front(), keys->cores.front());
  newest.alias = std::move(newest.name);
  newest.name.clear();
  newest.query = std::make_unique<SelectStatement>(std::move(*keys));
  if (listed.alias.empty()) listed.alias = listed.name;
  listed.name.clear();
  listed.query = std::make_unique<SelectStatement>(std::move(*latest));
}

}  // namespace kxrestore::engine::jet_sql
