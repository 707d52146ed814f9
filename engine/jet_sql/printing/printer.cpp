#include "engine/jet_sql/printing/printer.h"

#include <algorithm>

#include "base/text.h"
#include "engine/error_numbers.h"

namespace kxrestore::engine::jet_sql {
namespace {

// Some dialects repeat an operand, which doubles the text with every level of nesting.
constexpr std::size_t kMaxExpression = 1'000'000;

// How tightly a node binds; a child that binds no tighter than its parent needs brackets.
enum Level { kOrLevel = 1, kAndLevel, kNotLevel, kTestLevel, kArithmeticLevel, kPrimaryLevel };

Level LevelOf(const Expression& expression) {
  switch (expression.kind) {
    case ExpressionKind::kChain:
      if (expression.operators.front() == Operator::kOr) return kOrLevel;
      if (expression.operators.front() == Operator::kAnd) return kAndLevel;
      return kArithmeticLevel;
    case ExpressionKind::kNot:
      return kNotLevel;
    case ExpressionKind::kCompare:
    case ExpressionKind::kLike:
    case ExpressionKind::kBetween:
    case ExpressionKind::kIn:
    case ExpressionKind::kIsNull:
      return kTestLevel;
    case ExpressionKind::kMinus:
    case ExpressionKind::kCollate:
      return kArithmeticLevel;
    default:
      return kPrimaryLevel;
  }
}

std::string_view SignOf(Operator sign) {
  // In the order of the enumeration.
  constexpr std::string_view kSigns[] = {
      "OR", "AND", "=", "<>", "<", ">", "<=", ">=", "&", "||", "+", "-", "*", "/", "\\", "%"};
  return kSigns[static_cast<std::size_t>(sign)];
}

bool IsCall(const Expression& expression, Function function, std::size_t arguments) {
  return expression.function == function && expression.args.size() == arguments;
}

bool IsNeverNull(const Expression& condition) {
  return condition.kind == ExpressionKind::kIsNull || condition.kind == ExpressionKind::kExists ||
         IsCall(condition, Function::kIsNull, 1);
}

// Whether the expression is a condition by its form, rather than a value.
bool IsCondition(const Expression& expression) {
  return LevelOf(expression) <= kTestLevel || IsNeverNull(expression);
}

bool IsSameColumn(const Expression& a, const Expression& b) {
  return a.kind == ExpressionKind::kColumn && b.kind == ExpressionKind::kColumn &&
         EqualIgnoringCase(a.text, b.text) && EqualIgnoringCase(a.qualifier, b.qualifier);
}

class Printer {
 public:
  // `grouped`: the SELECT whose groups are printed, while outside of its aggregates.
  explicit Printer(const Dialect& dialect, PrintedAs printedAs = PrintedAs::kStatement,
                   const SelectCore* grouped = nullptr)
      : m_dialect(dialect), m_printedAs(printedAs), m_grouped(grouped) {}

  PrintedSql operator()(const SelectStatement& statement) const {
    return Select(statement, m_printedAs == PrintedAs::kStatement);
  }

  PrintedSql operator()(const UpdateStatement& statement) const {
    PrintedSql text = "UPDATE " + Table(statement.table) + " SET ";
    bool first = true;
    for (const auto& [column, expression] : statement.assignments) {
      if (!first) text += ", ";
      first = false;
      text += m_dialect.Identifier(column) + " = " + Operand(*expression, kTestLevel);
    }
    return text + Where(statement.where);
  }

  PrintedSql operator()(const InsertStatement& statement) const {
    PrintedSql text = "INSERT INTO " + m_dialect.Identifier(statement.table);
    if (!statement.columns.empty()) {
      text += " (";
      for (std::size_t i = 0; i < statement.columns.size(); ++i) {
        text += (i == 0 ? "" : ", ") + m_dialect.Identifier(statement.columns[i]);
      }
      text += ")";
    }
    if (statement.query) return text + " " + Select(*statement.query);
    text += " VALUES ";
    for (std::size_t i = 0; i < statement.rows.size(); ++i) {
      text += (i == 0 ? "(" : ", (") + List(statement.rows[i], 0) + ")";
    }
    return text;
  }

  PrintedSql operator()(const DeleteStatement& statement) const {
    return "DELETE FROM " + Table(statement.table) + Where(statement.where);
  }

 private:
  const DialectWords& Words() const { return m_dialect.Words(); }
  // Whether a condition is a value and a Boolean value a condition. Otherwise they are converted.
  bool HasBooleans() const { return Words().flagType.empty(); }

  PrintedSql Where(const ExpressionPtr& condition) const {
    return condition ? " WHERE " + Condition(*condition) : PrintedSql();
  }

  // ---- SELECT

  PrintedSql Select(const SelectStatement& statement, bool outermost = false) const {
    PrintedSql text;
    const bool needsTop = !outermost && !statement.orderBy.empty() && !Words().ordersWithin;
    for (std::size_t i = 0; i < statement.cores.size(); ++i) {
      if (i > 0) text += statement.unionAll[i - 1] ? " UNION ALL " : " UNION ";
      text += Of(nullptr).Core(statement.cores[i], needsTop && statement.cores.size() == 1);
    }
    if (needsTop && statement.cores.size() > 1) return text;  // TOP cannot apply to a whole union
    for (std::size_t i = 0; i < statement.orderBy.size(); ++i) {
      const OrderItem& item = statement.orderBy[i];
      text += i == 0 ? " ORDER BY " : ", ";
      text += (statement.cores.size() == 1 ? Of(&statement.cores.front()) : *this).SortKey(*item.expression);
      if (item.descending) text += " DESC";
    }
    if (Words().limitAtEnd) {
      if (statement.cores.front().top) {
        text += " LIMIT " + std::to_string(*statement.cores.front().top);
      } else if (statement.cores.size() == 1 && IsSingleFirst(statement.cores.front())) {
        text += " LIMIT 1";
      }
    }
    return text;
  }

  PrintedSql SortKey(const Expression& expression) const {
    const bool first = IsCall(expression, Function::kFirst, 1);
    const Expression& inner = first ? *expression.args.front() : expression;
    if (inner.kind != ExpressionKind::kColumn) return Value(expression);
    return m_dialect.SortKey(Text(expression), inner.valueKind);
  }

  // First() without GROUP BY yields one row, although it prints as a plain column.
  bool IsSingleFirst(const SelectCore& core) const {
    if (Words().firstIsAggregate || !core.groupBy.empty()) return false;
    bool first = false;
    for (const SelectItem& item : core.items) {
      if (!item.expression) return false;
      if (IsCall(*item.expression, Function::kFirst, 1)) {
        first = true;
      } else if (IsAggregate(*item.expression)) {
        return false;
      }
    }
    return first;
  }

  PrintedSql Core(const SelectCore& core, bool needsTop) const {
    PrintedSql text = core.distinct ? "SELECT DISTINCT " : "SELECT ";
    if (core.top && !Words().limitAtEnd) {
      text += "TOP " + std::to_string(*core.top) + " ";
    } else if (needsTop) {
      text += "TOP 2147483647 ";  // the server ignores the order of 100 PERCENT
    }
    for (std::size_t i = 0; i < core.items.size(); ++i) {
      if (i > 0) text += ", ";
      text += Of(&core).Item(core.items[i], i);
    }
    for (std::size_t i = 0; i < core.from.size(); ++i) {
      text += (i == 0 ? " FROM " : ", ") + Chain(core.from[i]);
    }
    text += Where(core.where);
    for (std::size_t i = 0; i < core.groupBy.size(); ++i) {
      text += (i == 0 ? " GROUP BY " : ", ") + GroupKey(*core.groupBy[i]);
    }
    if (core.having) text += " HAVING " + Of(&core).Condition(*core.having);
    return text;
  }

  // Names every column, because engines name unnamed ones differently.
  PrintedSql Item(const SelectItem& item, std::size_t index) const {
    if (!item.expression) {
      return item.starQualifier.empty() ? "*" : m_dialect.Identifier(item.starQualifier) + ".*";
    }
    return Value(*item.expression) + " AS " + m_dialect.Identifier(ColumnName(item, index));
  }

  PrintedSql Table(const TableRef& table) const {
    PrintedSql text;
    if (table.nested) return "(" + Chain(*table.nested) + ")";
    text = table.query ? "(" + Select(*table.query) + ")" : m_dialect.Identifier(table.name);
    if (!table.alias.empty()) text += " AS " + m_dialect.Identifier(table.alias);
    return text;
  }

  PrintedSql Chain(const JoinChain& chain) const {
    PrintedSql text = Table(chain.first);
    for (const Join& join : chain.joins) {
      text += join.type == JoinType::kLeft    ? " LEFT JOIN "
              : join.type == JoinType::kInner ? " INNER JOIN "
                                              : " CROSS JOIN ";
      text += Table(join.table);
      if (join.on) text += " ON " + Condition(*join.on);
    }
    return text;
  }

  // ---- expressions

  PrintedSql Condition(const Expression& expression) const {
    if (HasBooleans() || IsCondition(expression)) return Text(expression);
    return m_dialect.BooleanTest(Operand(expression, kTestLevel), true, expression.valueKind);
  }

  PrintedSql Value(const Expression& expression) const {
    if (HasBooleans() || !IsCondition(expression)) return Text(expression);
    const PrintedSql condition = Text(expression);
    const PrintedSql otherwise =
        IsNeverNull(expression) ? " ELSE 0 END" : " WHEN NOT (" + condition + ") THEN 0 END";
    return "CAST(CASE WHEN " + condition + " THEN 1" + otherwise + " AS " + Words().flagType + ")";
  }

  // Logical operators bind less tightly than those that take values.
  PrintedSql Operand(const Expression& expression, Level parent) const {
    if (!HasBooleans()) {
      if (parent < kTestLevel && !IsCondition(expression)) return Condition(expression);
      if (parent >= kTestLevel && IsCondition(expression)) return Value(expression);
    }
    const Level level = LevelOf(expression);
    const bool brackets = parent >= kTestLevel ? level < kPrimaryLevel : level <= parent;
    return brackets ? "(" + Text(expression) + ")" : Text(expression);
  }

  PrintedSql List(const std::vector<ExpressionPtr>& expressions, std::size_t from) const {
    PrintedSql text;
    for (std::size_t i = from; i < expressions.size(); ++i) {
      if (i > from) text += ", ";
      text += Value(*expressions[i]);
    }
    return text;
  }

  PrintedSql Text(const Expression& node) const {
    PrintedSql text = AnyText(node);
    if (text.Text().size() > kMaxExpression) {
      Raise(error_number::kSyntax, "Expression too complex in query expression '" +
                                       std::string(LeftCharacters(text.Text(), 100)) + "'.");
    }
    return text;
  }

  PrintedSql AnyText(const Expression& node) const {
    switch (node.kind) {
      case ExpressionKind::kNull:
        return "NULL";
      case ExpressionKind::kBoolean:
        return m_dialect.Boolean(node.number != 0);
      case ExpressionKind::kNumber:
        return node.text;
      case ExpressionKind::kText:
        return m_dialect.Text(node.text);
      case ExpressionKind::kDate:
        return m_dialect.Date(node.date);
      case ExpressionKind::kParameter:
        return m_dialect.Parameter(node.number);
      case ExpressionKind::kColumn:
        return HasManySpellings(node) ? m_dialect.First(Column(node), node.valueKind) : Column(node);
      case ExpressionKind::kStar:
        return "*";
      case ExpressionKind::kNot:
        return "NOT " + Operand(*node.args[0], kNotLevel);
      case ExpressionKind::kMinus:
        return "-" + Operand(*node.args[0], kArithmeticLevel);
      case ExpressionKind::kChain:
        return Operators(node);
      case ExpressionKind::kCompare:
        return Compare(node);
      case ExpressionKind::kLike:
        return m_dialect.Like(Operand(*node.args[0], kTestLevel), *node.args[1],
                              Operand(*node.args[1], kTestLevel), node.negated);
      case ExpressionKind::kBetween:
        return Operand(*node.args[0], kTestLevel) + (node.negated ? " NOT BETWEEN " : " BETWEEN ") +
               Operand(*node.args[1], kTestLevel) + " AND " + Operand(*node.args[2], kTestLevel);
      case ExpressionKind::kIn:
        return Operand(*node.args[0], kTestLevel) + (node.negated ? " NOT IN (" : " IN (") +
               (node.query ? Select(*node.query) : List(node.args, 1)) + ")";
      case ExpressionKind::kIsNull:
        return Operand(*node.args[0], kTestLevel) + (node.negated ? " IS NOT NULL" : " IS NULL");
      case ExpressionKind::kFunction:
        return Call(node);
      case ExpressionKind::kCase:
        return Case(node);
      case ExpressionKind::kCast:
        return "CAST(" + Value(*node.args[0]) + " AS " + node.text + ")";
      case ExpressionKind::kCollate:
        return Operand(*node.args[0], kArithmeticLevel) + " COLLATE " + m_dialect.Collation(node.text);
      case ExpressionKind::kSubquery:
        return "(" + Select(*node.query) + ")";
      case ExpressionKind::kExists:
        return "EXISTS (" + Select(*node.query) + ")";
    }
    return {};
  }

  std::string Column(const Expression& node) const {
    return (node.qualifier.empty() ? "" : m_dialect.Identifier(node.qualifier) + ".") +
           m_dialect.Identifier(node.text);
  }

  PrintedSql GroupKey(const Expression& expression) const {
    const Expression& column = GroupedExpression(expression);
    if (column.kind != ExpressionKind::kColumn) return Value(expression);
    return m_dialect.GroupKey(Column(column), column.valueKind);
  }

  // Whether the rows of a group may spell the column differently, so that one spelling must be chosen.
  bool HasManySpellings(const Expression& column) const {
    if (m_grouped == nullptr || !Words().firstIsAggregate) return false;
    return std::any_of(m_grouped->groupBy.begin(), m_grouped->groupBy.end(), [&](const ExpressionPtr& key) {
      return IsSameColumn(*key, column) && GroupKey(*key).Text() != Column(column);
    });
  }

  Printer Of(const SelectCore* grouped) const { return Printer(m_dialect, m_printedAs, grouped); }

  PrintedSql Operators(const Expression& node) const {
    const Level level = LevelOf(node);
    PrintedSql text = Operand(*node.args[0], level);
    for (std::size_t i = 0; i < node.operators.size(); ++i) {
      const Operator sign = node.operators[i];
      const PrintedSql right = Operand(*node.args[i + 1], level);
      if (sign == Operator::kConcatenate) {
        if (i == 0) text = m_dialect.EmptyIfNull(text);
        text += " " + PrintedSql(Words().concatenation) + " " + m_dialect.EmptyIfNull(right);
      } else if (sign == Operator::kDivide || sign == Operator::kDivideWhole) {
        text = m_dialect.Divide(i == 0 ? text : "(" + text + ")", right, sign == Operator::kDivideWhole);
      } else {
        const auto printed = sign == Operator::kStandardJoin ? Words().concatenation : SignOf(sign);
        text += " " + std::string(printed) + " " + right;
      }
    }
    return text;
  }

  PrintedSql Compare(const Expression& node) const {
    const Operator sign = node.operators.front();
    const Expression& left = *node.args[0];
    const Expression& right = *node.args[1];
    const bool leftBoolean = left.kind == ExpressionKind::kBoolean;
    const bool rightBoolean = right.kind == ExpressionKind::kBoolean;
    if (leftBoolean != rightBoolean && (sign == Operator::kEqual || sign == Operator::kNotEqual)) {
      const bool expected = ((leftBoolean ? left : right).number != 0) == (sign == Operator::kEqual);
      const Expression& tested = leftBoolean ? right : left;
      return m_dialect.BooleanTest(Operand(tested, kTestLevel), expected, tested.valueKind);
    }
    return Operand(left, kTestLevel) + " " + SignOf(sign) + " " + Operand(right, kTestLevel);
  }

  PrintedSql Call(const Expression& node) const {
    if (m_grouped != nullptr && IsAggregate(node)) return Of(nullptr).Call(node);
    if (IsCall(node, Function::kIsNull, 1)) return "(" + Operand(*node.args[0], kTestLevel) + " IS NULL)";
    if (IsCall(node, Function::kFirst, 1)) {
      return m_dialect.First(Operand(*node.args[0], kArithmeticLevel), node.args[0]->valueKind);
    }
    const bool maximum = IsCall(node, Function::kMax, 1);
    if ((maximum || IsCall(node, Function::kMin, 1)) && node.args[0]->valueKind == ValueKind::kBoolean) {
      return m_dialect.BooleanExtreme(Value(*node.args[0]), maximum);
    }
    if (IsCall(node, Function::kIIf, 3)) {
      const Expression& condition = *node.args[0];
      if (IsCall(condition, Function::kIsNull, 1) && IsSameColumn(*condition.args[0], *node.args[2])) {
        return "coalesce(" + Text(*node.args[2]) + ", " + Text(*node.args[1]) + ")";
      }
      return "CASE WHEN " + Condition(condition) + " THEN " + Value(*node.args[1]) + " ELSE " +
             Value(*node.args[2]) + " END";
    }
    std::vector<PrintedSql> arguments;
    for (const ExpressionPtr& argument : node.args) arguments.push_back(Value(*argument));
    if (node.distinct && !arguments.empty()) arguments.front() = "DISTINCT " + arguments.front();
    return m_dialect.Call(node, arguments);
  }

  PrintedSql Case(const Expression& node) const {
    PrintedSql text = "CASE";
    std::size_t i = 0;
    if (node.hasBase) text += " " + Value(*node.args[i++]);
    for (; i + 1 < node.args.size(); i += 2) {
      text += " WHEN " + (node.hasBase ? Value(*node.args[i]) : Condition(*node.args[i])) + " THEN " +
              Value(*node.args[i + 1]);
    }
    if (node.hasElse) text += " ELSE " + Value(*node.args.back());
    return text + " END";
  }

  const Dialect& m_dialect;
  PrintedAs m_printedAs;
  const SelectCore* m_grouped;
};

}  // namespace

PrintedSql PrintWithParameters(const Statement& statement, const Dialect& dialect, PrintedAs printedAs) {
  return std::visit(Printer(dialect, printedAs), statement);
}

std::string Print(const Statement& statement, const Dialect& dialect, PrintedAs printedAs) {
  return PrintWithParameters(statement, dialect, printedAs).Text();
}

std::string PrintSelect(const SelectStatement& statement, const Dialect& dialect) {
  return Printer(dialect)(statement).Text();
}

}  // namespace kxrestore::engine::jet_sql
