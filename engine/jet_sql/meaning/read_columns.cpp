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
bool CanDrop(const SelectItem& item) {
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

// What a statement reads of one nested statement in its FROM clause.
class ReadsOf {
 public:
  explicit ReadsOf(std::string_view alias) : m_alias(alias) {}

  void Add(const SelectStatement& statement) {
    for (const SelectCore& core : statement.cores) Add(core);
    for (const OrderItem& order : statement.orderBy) Add(*order.expression);
  }

  bool Holds(std::string_view name) const {
    return m_all || std::any_of(m_names.begin(), m_names.end(),
                                [&](std::string_view read) { return EqualIgnoringCase(read, name); });
  }

 private:
  void Add(const SelectCore& core) {
    for (const SelectItem& item : core.items) {
      if (!IsStar(item)) {
        Add(*item.expression);
      } else if (item.starQualifier.empty() || EqualIgnoringCase(item.starQualifier, m_alias)) {
        m_all = true;
      }
    }
    for (const JoinChain& chain : core.from) Add(chain);
    for (const ExpressionPtr* condition : {&core.where, &core.having}) {
      if (*condition) Add(**condition);
    }
    for (const ExpressionPtr& group : core.groupBy) Add(*group);
  }

  // A nested statement does not see its neighbours.
  void Add(const JoinChain& chain) {
    if (chain.first.nested) Add(*chain.first.nested);
    for (const Join& join : chain.joins) {
      if (join.table.nested) Add(*join.table.nested);
      if (join.on) Add(*join.on);
    }
  }

  void Add(const Expression& expression) {
    if (expression.kind == ExpressionKind::kColumn &&
        (expression.qualifier.empty() || EqualIgnoringCase(expression.qualifier, m_alias))) {
      m_names.push_back(expression.text);
      if (expression.text.find('.') != std::string::npos)
        m_all = true;  // [Table.Column] in one pair of brackets
    }
    for (const ExpressionPtr& part : expression.args) Add(*part);
    if (expression.query) Add(*expression.query);
  }

  std::string_view m_alias;
  bool m_all = false;
  std::vector<std::string_view> m_names;
};

// Whether an item of this SELECT can be dropped without changing which rows there are: a plain column, or an
// aggregate of one in a grouped query.
bool CanDropFrom(const SelectCore& core, const SelectItem& item) {
  if (IsStar(item)) return false;
  const Expression& expression = *item.expression;
  if (expression.kind == ExpressionKind::kColumn) return true;
  return !core.groupBy.empty() && IsAggregate(expression) &&
         std::all_of(expression.args.begin(), expression.args.end(),
                     [](const ExpressionPtr& argument) { return argument->kind == ExpressionKind::kColumn; });
}

void KeepOnlyRead(SelectStatement& nested, const ReadsOf& reads) {
  // In other statements the columns are matched by position, or decide which rows there are.
  if (nested.cores.size() != 1 || nested.cores.front().distinct || !nested.orderBy.empty()) return;
  SelectCore& core = nested.cores.front();
  if (core.having || std::any_of(core.items.begin(), core.items.end(), IsStar)) return;
  std::vector<SelectItem> kept;
  for (std::size_t i = 0; i < core.items.size(); ++i) {
    SelectItem& item = core.items[i];
    const std::string name = ColumnName(item, i);
    if (!reads.Holds(name) && CanDropFrom(core, item)) continue;
    if (item.alias.empty()) item.alias = name;  // which may depend on the place
    kept.push_back(std::move(item));
  }
  if (!kept.empty()) core.items = std::move(kept);
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

  const std::size_t ofStar = columns.size() + static_cast<std::size_t>(stars) - core.items.size();
  std::vector<SelectItem> items;
  std::vector<ResultColumn> kept;
  std::vector<std::size_t> places;  // new positions of the old columns
  for (SelectItem& item : core.items) {
    for (std::size_t count = IsStar(item) ? ofStar : 1; count > 0; --count) {
      ResultColumn& column = columns[places.size()];
      if (wanted[places.size()] || !CanDrop(item)) {
        items.push_back(IsStar(item) ? ColumnOfStar(item, column) : Named(std::exchange(item, {}), column));
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

void LeaveOutUnreadNestedColumns(SelectStatement& statement) {
  const auto visit = [&statement](TableRef& table) {
    if (!table.query) return;
    ReadsOf reads(table.alias);
    reads.Add(statement);
    KeepOnlyRead(*table.query, reads);
    LeaveOutUnreadNestedColumns(*table.query);
  };
  for (SelectCore& core : statement.cores) {
    for (JoinChain& chain : core.from) ForEachTable(chain, visit);
  }
}

}  // namespace kxrestore::engine::jet_sql
