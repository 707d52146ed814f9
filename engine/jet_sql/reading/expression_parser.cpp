#include "engine/jet_sql/reading/expression_parser.h"

#include <algorithm>

namespace kxrestore::engine::jet_sql {
namespace {

constexpr int kMaxTreeDepth = 400;  // what printing and destroying may recurse through

// Left-associative operators by how tightly they bind. Comparisons are between AND and concatenation.
enum Level { kOr, kAnd, kCompare, kConcatenate, kSum, kProduct };

constexpr struct {
  Level level;
  std::string_view text;
  Operator sign;
} kOperators[] = {
    {kOr, "OR", Operator::kOr},
    {kAnd, "AND", Operator::kAnd},
    {kCompare, "=", Operator::kEqual},
    {kCompare, "<>", Operator::kNotEqual},
    {kCompare, "<", Operator::kLess},
    {kCompare, ">", Operator::kGreater},
    {kCompare, "<=", Operator::kLessOrEqual},
    {kCompare, ">=", Operator::kGreaterOrEqual},
    {kCompare, "==", Operator::kEqual},
    {kCompare, "!=", Operator::kNotEqual},
    {kConcatenate, "&", Operator::kConcatenate},
    {kConcatenate, "||", Operator::kStandardJoin},
    {kSum, "+", Operator::kAdd},
    {kSum, "-", Operator::kSubtract},
    {kProduct, "*", Operator::kMultiply},
    {kProduct, "/", Operator::kDivide},
    {kProduct, "\\", Operator::kDivideWhole},
    {kProduct, "MOD", Operator::kModulo},
    {kProduct, "%", Operator::kModulo},
};

}  // namespace

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

std::optional<Operator> ExpressionParser::TakeOperator(int level) {
  for (const auto& [itsLevel, text, sign] : kOperators) {
    if (itsLevel == level && (TakeSymbol(text) || TakeWord(text))) return sign;
  }
  return std::nullopt;
}

ExpressionPtr ExpressionParser::ParseChain(int level) {
  const auto parseOperand = [&] {
    return level == kAnd ? ParseNot() : level == kProduct ? ParseUnary() : ParseChain(level + 1);
  };
  ExpressionPtr first = parseOperand();
  std::optional<Operator> sign = TakeOperator(level);
  if (!sign) return first;
  ExpressionPtr chain = Make(ExpressionKind::kChain);
  Adopt(*chain, std::move(first));
  for (; sign; sign = TakeOperator(level)) {
    chain->operators.push_back(*sign);
    Adopt(*chain, parseOperand());
  }
  return chain;
}

ExpressionPtr ExpressionParser::ParseExpression() {
  DepthGuard guard(*this);
  return ParseChain(kOr);
}

ExpressionPtr ExpressionParser::ParseNot() {
  if (!IsWord(Current(), "NOT")) return ParseComparison();
  DepthGuard guard(*this);
  Advance();
  ExpressionPtr expression = Make(ExpressionKind::kNot);
  Adopt(*expression, ParseNot());
  return expression;
}

ExpressionPtr ExpressionParser::ParseComparison() {
  ExpressionPtr left = ParseChain(kConcatenate);
  for (;;) {
    ExpressionPtr node;
    if (const auto sign = TakeOperator(kCompare)) {
      node = Make(ExpressionKind::kCompare);
      node->operators.push_back(*sign);
      Adopt(*node, std::move(left));
      Adopt(*node, ParseChain(kConcatenate));
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
    Adopt(*node, ParseChain(kConcatenate));
  } else if (TakeWord("BETWEEN")) {
    node = Make(ExpressionKind::kBetween);
    Adopt(*node, std::move(left));
    Adopt(*node, ParseChain(kConcatenate));
    NeedWord("AND");
    Adopt(*node, ParseChain(kConcatenate));
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
    case TokenKind::kText:
    case TokenKind::kNumber: {
      const bool isText = token.kind == TokenKind::kText;
      ExpressionPtr node = Make(isText ? ExpressionKind::kText : ExpressionKind::kNumber);
      node->text = Advance().value;
      return node;
    }
    case TokenKind::kDate: {
      ExpressionPtr node = Make(ExpressionKind::kDate);
      node->date = Advance().date;
      return node;
    }
    case TokenKind::kParameter: {
      if (m_parameters == m_maxParameters) break;
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
