#include "engine/jet_sql/reading/expression_parser.h"

#include <algorithm>

namespace kxrestore::engine::jet_sql {
namespace {

constexpr int kMaxTreeDepth = 400;  // what printing and destroying may recurse through

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

ExpressionPtr ExpressionParser::Make(ExpressionKind kind) {
  auto expression = std::make_unique<Expression>();
  expression->kind = kind;
  return expression;
}

void ExpressionParser::Deepen(Expression& parent, int depth) {
  parent.depth = std::max(parent.depth, depth);
  m_deepest = std::max(m_deepest, parent.depth);
  if (parent.depth > kMaxTreeDepth) RaiseHere("Expression too complex");
}

void ExpressionParser::Adopt(Expression& parent, ExpressionPtr child) {
  Deepen(parent, child->depth + 1);
  parent.args.push_back(std::move(child));
}

ExpressionPtr ExpressionParser::ParseExpression() {
  DepthGuard guard(*this);
  return ParseChain(&ExpressionParser::ParseAnd,
                    [this] { return TakeWord("OR") ? Taken(Operator::kOr) : std::nullopt; });
}

ExpressionPtr ExpressionParser::ParseAnd() {
  return ParseChain(&ExpressionParser::ParseNot,
                    [this] { return TakeWord("AND") ? Taken(Operator::kAnd) : std::nullopt; });
}

ExpressionPtr ExpressionParser::ParseNot() {
  if (!IsWord(Current(), "NOT")) return ParseComparison();
  DepthGuard guard(*this);
  Advance();
  ExpressionPtr expression = Make(ExpressionKind::kNot);
  Adopt(*expression, ParseNot());
  return expression;
}

ExpressionParser::Taken ExpressionParser::TakeOperator(std::initializer_list<Sign> signs) {
  for (const auto& [text, sign] : signs) {
    if (TakeSymbol(text)) return sign;
  }
  return std::nullopt;
}

ExpressionPtr ExpressionParser::ParseComparison() {
  ExpressionPtr left = ParseConcatenation();
  for (;;) {
    ExpressionPtr node;
    if (const Taken sign = TakeOperator({{"=", Operator::kEqual},
                                         {"<>", Operator::kNotEqual},
                                         {"<", Operator::kLess},
                                         {">", Operator::kGreater},
                                         {"<=", Operator::kLessOrEqual},
                                         {">=", Operator::kGreaterOrEqual},
                                         {"==", Operator::kEqual},
                                         {"!=", Operator::kNotEqual}})) {
      node = Make(ExpressionKind::kCompare);
      node->operators.push_back(*sign);
      Adopt(*node, std::move(left));
      Adopt(*node, ParseConcatenation());
    } else if (IsWord(Current(), "IS")) {
      Advance();
      node = Make(ExpressionKind::kIsNull);
      node->negated = TakeWord("NOT");
      NeedWord("NULL");
      Adopt(*node, std::move(left));
    } else if (IsTestWord(Current()) || (IsWord(Current(), "NOT") && IsTestWord(Ahead()))) {
      node = ParseTest(std::move(left));
    } else {
      return left;
    }
    left = std::move(node);
  }
}

bool ExpressionParser::IsTestWord(const Token& token) {
  return IsWord(token, "LIKE") || IsWord(token, "BETWEEN") || IsWord(token, "IN");
}

ExpressionPtr ExpressionParser::ParseTest(ExpressionPtr left) {
  const bool negated = TakeWord("NOT");
  ExpressionPtr node;
  if (TakeWord("LIKE")) {
    node = Make(ExpressionKind::kLike);
    Adopt(*node, std::move(left));
    Adopt(*node, ParseConcatenation());
  } else if (TakeWord("BETWEEN")) {
    node = Make(ExpressionKind::kBetween);
    Adopt(*node, std::move(left));
    Adopt(*node, ParseConcatenation());
    NeedWord("AND");
    Adopt(*node, ParseConcatenation());
  } else {
    NeedWord("IN");
    node = Make(ExpressionKind::kIn);
    Adopt(*node, std::move(left));
    NeedSymbol("(");
    if (IsWord(Current(), "SELECT")) {
      AdoptQuery(*node);
    } else {
      ParseArguments(*node);
    }
    NeedSymbol(")");
  }
  node->negated = negated;
  return node;
}

ExpressionPtr ExpressionParser::ParseConcatenation() {
  return ParseChain(&ExpressionParser::ParseSum, [this] {
    return TakeOperator({{"&", Operator::kConcatenate}, {"||", Operator::kStandardJoin}});
  });
}

ExpressionPtr ExpressionParser::ParseSum() {
  return ParseChain(&ExpressionParser::ParseProduct, [this] {
    return TakeOperator({{"+", Operator::kAdd}, {"-", Operator::kSubtract}});
  });
}

ExpressionPtr ExpressionParser::ParseProduct() {
  return ParseChain(&ExpressionParser::ParseUnary, [this] {
    if (TakeWord("MOD")) return Taken(Operator::kModulo);
    return TakeOperator({{"*", Operator::kMultiply},
                         {"/", Operator::kDivide},
                         {"\\", Operator::kDivideWhole},
                         {"%", Operator::kModulo}});
  });
}

ExpressionPtr ExpressionParser::ParseUnary() {
  const bool minus = IsSymbol(Current(), "-");
  if (!minus && !IsSymbol(Current(), "+")) return ParsePostfix();
  DepthGuard guard(*this);
  Advance();
  ExpressionPtr operand = ParseUnary();
  if (!minus) return operand;
  ExpressionPtr node = Make(ExpressionKind::kMinus);
  Adopt(*node, std::move(operand));
  return node;
}

ExpressionPtr ExpressionParser::ParsePostfix() {
  ExpressionPtr expression = ParsePrimary();
  while (IsWord(Current(), "COLLATE")) {
    Advance();
    ExpressionPtr node = Make(ExpressionKind::kCollate);
    node->text = NeedName();
    Adopt(*node, std::move(expression));
    expression = std::move(node);
  }
  return expression;
}

ExpressionPtr ExpressionParser::ParsePrimary() {
  const Token& token = Current();
  switch (token.kind) {
    case TokenKind::kText: {
      ExpressionPtr node = Make(ExpressionKind::kText);
      node->text = Advance().value;
      return node;
    }
    case TokenKind::kNumber: {
      ExpressionPtr node = Make(ExpressionKind::kNumber);
      node->text = Advance().value;
      return node;
    }
    case TokenKind::kDate: {
      ExpressionPtr node = Make(ExpressionKind::kDate);
      node->date = Advance().date;
      return node;
    }
    case TokenKind::kParameter: {
      if (m_parameters == m_mostParameters) break;
      Advance();
      ExpressionPtr node = Make(ExpressionKind::kParameter);
      node->number = static_cast<std::int64_t>(++m_parameters);
      return node;
    }
    case TokenKind::kBracketed:
      return ParseColumn();
    case TokenKind::kWord:
      return ParseWord();
    case TokenKind::kSymbol:
      if (TakeSymbol("(")) {
        ExpressionPtr inner;
        if (IsWord(Current(), "SELECT")) {
          DepthGuard guard(*this);
          inner = Make(ExpressionKind::kSubquery);
          AdoptQuery(*inner);
        } else {
          inner = ParseExpression();
        }
        NeedSymbol(")");
        return inner;
      }
      break;
    case TokenKind::kEnd:
      break;
  }
  RaiseHere("Syntax error (missing operand)");
}

ExpressionPtr ExpressionParser::ParseWord() {
  const Token& token = Current();
  const bool call = IsSymbol(Ahead(), "(");
  if (IsWord(token, "CASE")) return ParseCase();
  if (call && IsWord(token, "CAST")) return ParseCast();
  if (call && IsWord(token, "EXISTS")) {
    DepthGuard guard(*this);
    Advance();
    Advance();
    ExpressionPtr node = Make(ExpressionKind::kExists);
    AdoptQuery(*node);
    NeedSymbol(")");
    return node;
  }
  if (call && (!IsReserved(token.value) || IsWord(token, "LEFT") || IsWord(token, "RIGHT"))) {
    return ParseFunction();
  }
  if (!IsSymbol(Ahead(), ".")) {
    if (TakeWord("NULL")) return Make(ExpressionKind::kNull);
    if (IsWord(token, "TRUE") || IsWord(token, "FALSE")) {
      ExpressionPtr node = Make(ExpressionKind::kBoolean);
      node->number = IsWord(token, "TRUE") ? 1 : 0;
      Advance();
      return node;
    }
  }
  if (!AtName()) RaiseHere("Syntax error (missing operand)");
  return ParseColumn();
}

// column, table.column, schema.table.column, [table.column]
ExpressionPtr ExpressionParser::ParseColumn() {
  ExpressionPtr node = Make(ExpressionKind::kColumn);
  const bool bracketed = Current().kind == TokenKind::kBracketed;
  node->text = NeedName();
  while (IsSymbol(Current(), ".")) {
    Advance();
    node->qualifier = std::move(node->text);
    node->text = NeedMember();
  }
  if (bracketed && node->qualifier.empty()) {
    const std::size_t point = node->text.find('.');
    if (point != std::string::npos && point > 0 && point + 1 < node->text.size()) {
      node->qualifier = node->text.substr(0, point);
      node->text.erase(0, point + 1);
    }
  }
  return node;
}

void ExpressionParser::ParseArguments(Expression& node) {
  do {
    Adopt(node, ParseExpression());
  } while (TakeSymbol(","));
}

ExpressionPtr ExpressionParser::ParseFunction() {
  ExpressionPtr node = Make(ExpressionKind::kFunction);
  node->text = Advance().value;
  node->function = FunctionNamed(node->text);
  NeedSymbol("(");
  if (TakeSymbol("*")) {
    Adopt(*node, Make(ExpressionKind::kStar));
  } else if (!IsSymbol(Current(), ")")) {
    node->distinct = TakeWord("DISTINCT");
    ParseArguments(*node);
  }
  NeedSymbol(")");
  return node;
}

ExpressionPtr ExpressionParser::ParseCase() {
  DepthGuard guard(*this);
  Advance();
  ExpressionPtr node = Make(ExpressionKind::kCase);
  if (!IsWord(Current(), "WHEN")) {
    node->hasBase = true;
    Adopt(*node, ParseExpression());
  }
  while (TakeWord("WHEN")) {
    Adopt(*node, ParseExpression());
    NeedWord("THEN");
    Adopt(*node, ParseExpression());
  }
  if (node->args.size() < 2) RaiseHere("Syntax error (WHEN expected)");
  if (TakeWord("ELSE")) {
    node->hasElse = true;
    Adopt(*node, ParseExpression());
  }
  NeedWord("END");
  return node;
}

ExpressionPtr ExpressionParser::ParseCast() {
  Advance();
  NeedSymbol("(");
  ExpressionPtr node = Make(ExpressionKind::kCast);
  Adopt(*node, ParseExpression());
  NeedWord("AS");
  node->text = NeedName();
  while (Current().kind == TokenKind::kWord) node->text += " " + Advance().value;
  NeedSymbol(")");
  return node;
}

void ExpressionParser::AdoptQuery(Expression& node) {
  DepthGuard guard(*this);
  node.query = std::make_unique<SelectStatement>(ParseSelect());
  Deepen(node, m_deepest + 1);
}

}  // namespace kxrestore::engine::jet_sql
