#include "engine/jet_sql/read_columns.h"

#include <algorithm>
#include <utility>

#include "base/text.h"

namespace kxrestore::engine::jet_sql {
namespace {

bool IsStar(const SelectItem& item) {
  return !item.expression;
}

// Whether the columns behind a star can be called by their names alone, or by the name that the star has.
bool CanSpell(const SelectItem& star, const SelectCore& core) {
  if (!star.starQualifier.empty()) return true;
  return core.from.size() == 1 && core.from.front().joins.empty() && !core.from.front().first.nested;
}

SelectItem ColumnOfStar(const SelectItem& star, const ResultColumn& column) {
  SelectItem item;
  item.expression = std::make_unique<Expression>();
  item.expression->kind = ExpressionKind::kColumn;
  item.expression->qualifier = star.starQualifier;
  item.expression->text = column.name;
  item.alias = column.name;
  return item;
}

}  // namespace

void LeaveOutUnreadColumns(SelectStatement& statement, std::vector<ResultColumn>& columns,
                           const std::vector<std::string_view>& read) {
  if (read.empty() || statement.cores.size() != 1 || statement.cores.front().distinct) return;
  SelectCore& core = statement.cores.front();
  const bool byPlace =
      std::any_of(statement.orderBy.begin(), statement.orderBy.end(),
                  [](const OrderItem& order) { return order.expression->kind == ExpressionKind::kNumber; });
  const auto stars = std::count_if(core.items.begin(), core.items.end(), IsStar);
  const auto star = std::find_if(core.items.begin(), core.items.end(), IsStar);
  if (byPlace || stars > 1 || (stars == 1 && !CanSpell(*star, core))) return;
  const auto isRead = [&](const ResultColumn& column) {
    return std::any_of(read.begin(), read.end(),
                       [&](std::string_view name) { return EqualIgnoringCase(name, column.name); });
  };
  if (std::none_of(columns.begin(), columns.end(), isRead)) return;

  const std::size_t behindStar = columns.size() + static_cast<std::size_t>(stars) - core.items.size();
  std::vector<SelectItem> items;
  std::vector<ResultColumn> kept;
  auto column = columns.begin();
  for (SelectItem& item : core.items) {
    if (!IsStar(item)) {
      if (isRead(*column) || item.expression->kind != ExpressionKind::kColumn) {
        items.push_back(std::move(item));
        kept.push_back(std::move(*column));
      }
      ++column;
      continue;
    }
    for (const auto end = column + static_cast<std::ptrdiff_t>(behindStar); column != end; ++column) {
      if (!isRead(*column)) continue;
      items.push_back(ColumnOfStar(item, *column));
      kept.push_back(std::move(*column));
    }
  }
  core.items = std::move(items);
  columns = std::move(kept);
}

}  // namespace kxrestore::engine::jet_sql
