#include "engine/jet_sql/ast.h"

#include <algorithm>

#include "engine/jet_sql/reading/lexer.h"

namespace kxrestore::engine::jet_sql {
namespace {

ValueKind KindOfFunction(const Expression& call) {
  const FunctionFacts& facts = FactsOf(call.function);
  if (facts.kindLike == FunctionFacts::kNoArgument) return facts.kind;
  for (auto i = static_cast<std::size_t>(facts.kindLike); i < call.args.size(); ++i) {
    if (call.args[i]->valueKind != ValueKind::kUnknown) return call.args[i]->valueKind;
  }
  return ValueKind::kUnknown;
}

ValueKind KindOfChain(Operator sign) {
  switch (sign) {
    case Operator::kOr:
    case Operator::kAnd:
      return ValueKind::kBoolean;
    case Operator::kConcatenate:
    case Operator::kStandardJoin:
      return ValueKind::kText;
    default:
      return ValueKind::kNumber;
  }
}

}  // namespace

Expression::Expression() = default;
Expression::~Expression() = default;

ExpressionPtr MakeColumn(std::string qualifier, std::string name) {
  auto column = std::make_unique<Expression>();
  column->kind = ExpressionKind::kColumn;
  column->qualifier = std::move(qualifier);
  column->text = std::move(name);
  return column;
}

bool IsAggregate(const Expression& expression) {
  return expression.args.size() == 1 && FactsOf(expression.function).isAggregate;
}

bool HoldsAggregate(const Expression& expression) {
  return IsAggregate(expression) ||
         std::any_of(expression.args.begin(), expression.args.end(),
                     [](const ExpressionPtr& part) { return HoldsAggregate(*part); });
}

const Expression& GroupedExpression(const Expression& key) {
  return key.kind == ExpressionKind::kCollate && IsKeyword(key.text, "NOCASE") ? *key.args.front() : key;
}

ValueKind KindOf(const Expression& expression) {
  switch (expression.kind) {
    case ExpressionKind::kText:
      return ValueKind::kText;
    case ExpressionKind::kNumber:
    case ExpressionKind::kMinus:
      return ValueKind::kNumber;
    case ExpressionKind::kDate:
      return ValueKind::kDate;
    case ExpressionKind::kChain:
      return KindOfChain(expression.operators.front());
    case ExpressionKind::kFunction:
      return KindOfFunction(expression);
    case ExpressionKind::kBoolean:
    case ExpressionKind::kNot:
    case ExpressionKind::kIsNull:
    case ExpressionKind::kExists:
    case ExpressionKind::kCompare:
    case ExpressionKind::kBetween:
    case ExpressionKind::kIn:
    case ExpressionKind::kLike:
      return ValueKind::kBoolean;
    default:
      return ValueKind::kUnknown;
  }
}

}  // namespace kxrestore::engine::jet_sql
