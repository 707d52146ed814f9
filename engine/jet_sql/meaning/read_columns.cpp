#include "engine/jet_sql/meaning/read_columns.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <utility>

#include "base/text.h"

namespace kxrestore::engine::jet_sql {
namespace {

bool IsStar(const SelectItem& item) {
  return !item.expression;
}

// Whether the columns of a star can be written with their names alone or with the qualifier of the star.
bool CanSpell(const SelectItem& star, const SelectCore& core) {
  if (!star.starQualifier.empty()) return true;
  return core.from.size() == 1 && core.from.front().joins.empty() && !core.from.front().first.nested;
}

// The 1-based position if ORDER BY names a column by position, else 0.
std::size_t Place(const Expression& order) {
  std::size_t place = 0;
  if (order.kind == ExpressionKind::kNumber) {
    std::from_chars(order.text.data(), order.text.data() + order.text.size(), place);
  }
  return place;
}

// A calculated column may decide which rows there are, and other parts of the statement may use an alias.
bool CanGo(const SelectItem& item) {
  if (IsStar(item)) return true;
  return item.expression->kind == ExpressionKind::kColumn &&
         (item.alias.empty() || EqualIgnoringCase(item.alias, item.expression->text));
}

using Wanted = std::vector<bool>;  // a flag for each column

void WantColumn(std::string_view name, const std::vector<ResultColumn>& columns, Wanted& wanted) {
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (EqualIgnoringCase(name, columns[i].name)) wanted[i] = true;
  }
}

// An unqualified name refers to the result column, since several tables may have a column of that name.
void WantNamedColumns(const Expression& expression, const std::vector<ResultColumn>& columns,
                      Wanted& wanted) {
  if (expression.kind == ExpressionKind::kColumn && expression.qualifier.empty()) {
    WantColumn(expression.text, columns, wanted);
  }
  for (const ExpressionPtr& part : expression.args) WantNamedColumns(*part, columns, wanted);
}

SelectItem ColumnOfStar(const SelectItem& star, const ResultColumn& column) {
  SelectItem item;
  item.expression = MakeColumn(star.starQualifier, column.name);
  item.alias = column.name;
  return item;
}

// Keeps the name, which may depend on the position among columns that are dropped.
SelectItem Named(SelectItem item, const ResultColumn& column) {
  item.alias = column.name;
  return item;
}

}  // namespace

void LeaveOutUnreadColumns(SelectStatement& statement, std::vector<ResultColumn>& columns,
                           const std::vector<std::string_view>& read) {
  if (read.empty() || statement.cores.size() != 1 || statement.cores.front().distinct) return;
  SelectCore& core = statement.cores.front();
  const auto stars = std::count_if(core.items.begin(), core.items.end(), IsStar);
  const auto star = std::find_if(core.items.begin(), core.items.end(), IsStar);
  if (stars > 1 || (stars == 1 && !CanSpell(*star, core))) return;

  Wanted wanted(columns.size());
  for (const std::string_view name : read) WantColumn(name, columns, wanted);
  if (std::none_of(wanted.begin(), wanted.end(), [](bool isWanted) { return isWanted; })) return;
  for (const OrderItem& order : statement.orderBy) {
    const std::size_t place = Place(*order.expression);
    if (place > columns.size()) return;
    if (place > 0) wanted[place - 1] = true;
    WantNamedColumns(*order.expression, columns, wanted);
  }
  for (const ExpressionPtr& group : core.groupBy) WantNamedColumns(*group, columns, wanted);

  const std::size_t behindStar = columns.size() + static_cast<std::size_t>(stars) - core.items.size();
  std::vector<SelectItem> items;
  std::vector<ResultColumn> kept;
  std::vector<std::size_t> places;  // new positions of the old columns
  for (SelectItem& item : core.items) {
    for (std::size_t count = IsStar(item) ? behindStar : 1; count > 0; --count) {
      ResultColumn& column = columns[places.size()];
      if (wanted[places.size()] || !CanGo(item)) {
        items.push_back(IsStar(item) ? ColumnOfStar(item, column) : Named(std::move(item), column));
        kept.push_back(std::move(column));
      }
      places.push_back(items.size());
    }
  }
  for (OrderItem& order : statement.orderBy) {
    const std::size_t place = Place(*order.expression);
    if (place > 0) order.expression->text = std::to_string(places[place - 1]);
  }
  core.items = std::move(items);
  columns = std::move(kept);
}

}  // namespace kxrestore::engine::jet_sql
