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
#include "engine/jet_sql/reading/lexer.h"
#include "engine/jet_sql/reading/parser.h"

namespace kxrestore::engine::jet_sql {
namespace {

// The templates: F are the rows, G the newest key of each name. The listing of all sets has a second sort
// key.
constexpr std::string_view kLatest =
    "SELECT F.OrigName AS OrigName FROM F INNER JOIN G ON $ WHERE F.Status = 2 GROUP BY F.OrigName "
    "ORDER BY First(F.DateStamp) DESC";
constexpr std::string_view kThenNewest = ", First(F.ID) DESC";
constexpr std::string_view kNewest =
    "SELECT F.OrigName AS OrigName, Max(F.DateStamp) AS DateStamp, Max(F.ID) AS ID FROM F "
    "WHERE F.Status = 2 GROUP BY F.OrigName";
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

bool IsPlainName(const std::string& name) {
  return std::all_of(name.begin(), name.end(), IsWordCharacter);
}

std::string InBrackets(const std::string& name) {
  return "[" + name + "]";
}

// Replaces F and G by these names, which consist of word characters only.
SelectStatement FromTemplate(std::string text, const std::string& rows, const std::string& newest) {
  const auto replace = [&text](const std::string& old, const std::string& name) {
    for (std::size_t at = 0; (at = text.find(old, at)) != std::string::npos; at += name.size()) {
      text.replace(at, old.size(), name);
    }
  };
  replace(" F.", " " + InBrackets(rows) + ".");
  replace("(F.", "(" + InBrackets(rows) + ".");
  replace(" F ", " " + InBrackets(rows) + " ");
  replace(" G.", " " + InBrackets(newest) + ".");
  replace(" G ", " " + InBrackets(newest) + " ");
  Statement statement = Parse(text);
  return std::move(std::get<SelectStatement>(statement));
}

// Compares the trees by printing both in the form in which SQLite keeps them, without First().
bool IsSame(const SelectStatement& query, const SelectStatement& other) {
  const SqliteDialect dialect(true);
  return EqualIgnoringCase(PrintSelect(query, dialect), PrintSelect(other, dialect));
}

bool IsLatest(SelectStatement& query, const std::string& rows, const std::string& newest) {
  std::vector<SelectItem> items;
  items.swap(query.cores.front().items);
  SelectItem& name = query.cores.front().items.emplace_back();
  name.expression = MakeColumn(rows, std::string(kName));
  name.alias = kName;
  bool isSame = false;
  for (const std::string_view on : {" F.ID = G.ID ", " G.ID = F.ID "}) {
    for (const std::string_view then : {std::string_view(), kThenNewest}) {
      std::string text(kLatest);
      text.replace(text.find(" $ "), 3, on).append(then);
      isSame = isSame || IsSame(query, FromTemplate(std::move(text), rows, newest));
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
    if (!IsNamed(*table) || !table->alias.empty() || !IsPlainName(table->name)) return;
  }
  if (!IsLatest(*latest, rows.name, newest.name)) return;
  auto keys = ReadPlainQuery(facts, newest.name);
  if (!keys || !IsSame(*keys, FromTemplate(std::string(kNewest), rows.name, newest.name))) return;
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
