#include "engine/jet_sql/parser.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "base/error.h"
#include "engine/error_numbers.h"
#include "engine/jet_sql/lexer.h"

namespace kxrestore::engine::jet_sql {

Expression::Expression() = default;
Expression::~Expression() = default;

namespace {

constexpr int kMaxDepth = 120;      // brackets within brackets
constexpr int kMaxTreeDepth = 400;  // what printing and destroying may recurse through
constexpr std::size_t kMaxJoins = 63;

// Words that cannot be names unless they stand in brackets or behind a point.
constexpr std::array<std::string_view, 46> kReserved = {
    "ALL",   "AND",      "AS",          "ASC",  "BETWEEN", "BY",     "CASE",  "CAST",   "CROSS", "DELETE",
    "DESC",  "DISTINCT", "DISTINCTROW", "ELSE", "END",     "EXISTS", "FROM",  "FULL",   "GROUP", "HAVING",
    "IN",    "INNER",    "INSERT",      "INTO", "IS",      "JOIN",   "LEFT",  "LIKE",   "LIMIT", "MOD",
    "NOT",   "NULL",     "ON",          "OR",   "ORDER",   "OUTER",  "RIGHT", "SELECT", "SET",   "THEN",
    "UNION", "UPDATE",   "VALUES",      "WHEN", "WHERE",   "WITH"};

bool IsReserved(std::string_view word) {
  return std::any_of(kReserved.begin(), kReserved.end(),
                     [word](std::string_view keyword) { return IsKeyword(word, keyword); });
}

class Parser {
 public:
  explicit Parser(std::string_view source) : m_source(source), m_tokens(Tokenize(source)) {}

  Statement Run() {
    Statement statement = ParseStatement();
    const bool ended = TakeSymbol(";");
    if (Current().kind != TokenKind::kEnd) {
      if (!ended) RaiseHere("Syntax error (missing operator)");
      throw Error(error_number::kTextAfterEnd,
                  "Characters found after end of SQL statement: '" + Rest() + "'.", "Engine");
    }
    return statement;
  }

 private:
  // ---- tokens

  const Token& Current() const { return m_tokens[m_index]; }
  const Token& Ahead(std::size_t count = 1) const {
    return m_tokens[std::min(m_index + count, m_tokens.size() - 1)];
  }
  const Token& Advance() {
    const Token& token = m_tokens[m_index];
    if (m_index + 1 < m_tokens.size()) ++m_index;
    return token;
  }
  static bool IsWord(const Token& token, std::string_view keyword) {
    return token.kind == TokenKind::kWord && IsKeyword(token.value, keyword);
  }
  static bool IsSymbol(const Token& token, std::string_view symbol) {
    return token.kind == TokenKind::kSymbol && token.piece == symbol;
  }
  bool TakeWord(std::string_view keyword) {
    if (!IsWord(Current(), keyword)) return false;
    Advance();
    return true;
  }
  bool TakeSymbol(std::string_view symbol) {
    if (!IsSymbol(Current(), symbol)) return false;
    Advance();
    return true;
  }
  void NeedWord(std::string_view keyword) {
    if (!TakeWord(keyword)) RaiseHere("Syntax error (" + std::string(keyword) + " expected)");
  }
  void NeedSymbol(std::string_view symbol) {
    if (!TakeSymbol(symbol)) RaiseHere("Syntax error ('" + std::string(symbol) + "' expected)");
  }
  std::string Rest() const {
    const std::string_view piece = Current().piece;
    const std::size_t offset = static_cast<std::size_t>(piece.data() - m_source.data());
    return std::string(m_source.substr(offset, 80));
  }
  [[noreturn]] void RaiseHere(std::string_view what) const {
    const std::size_t offset = Current().kind == TokenKind::kEnd
                                   ? (m_source.size() > 40 ? m_source.size() - 40 : 0)
                                   : static_cast<std::size_t>(Current().piece.data() - m_source.data());
    RaiseSyntax(what, m_source.substr(offset));
  }

  class DepthGuard {
   public:
    explicit DepthGuard(Parser& parser) : m_parser(parser) {
      if (++m_parser.m_depth > kMaxDepth) {
        --m_parser.m_depth;
        m_parser.RaiseHere("Expression too complex");
      }
    }
    ~DepthGuard() { --m_parser.m_depth; }
    DepthGuard(const DepthGuard&) = delete;
    DepthGuard& operator=(const DepthGuard&) = delete;

   private:
    Parser& m_parser;
  };

  // ---- names

  bool AtName() const {
    return Current().kind == TokenKind::kBracketed ||
           (Current().kind == TokenKind::kWord && !IsReserved(Current().value));
  }
  std::string NeedName() {
    if (!AtName()) RaiseHere("Syntax error (name expected)");
    return Advance().value;
  }
  // Behind a point every word is a name.
  std::string NeedMember() {
    if (Current().kind != TokenKind::kBracketed && Current().kind != TokenKind::kWord) {
      RaiseHere("Syntax error (name expected)");
    }
    return Advance().value;
  }
  // A table, with the schema that some texts put before it left out.
  std::string NeedTableName() {
    std::string name = NeedName();
    if (TakeSymbol(".")) name = NeedMember();
    return name;
  }
  std::string TakeAlias() {
    if (TakeWord("AS")) return NeedName();
    return AtName() ? Advance().value : std::string();
  }

  // ---- expressions

  ExpressionPtr Make(ExpressionKind kind) {
    auto expression = std::make_unique<Expression>();
    expression->kind = kind;
    return expression;
  }
  void Deepen(Expression& parent, int depth) {
    parent.depth = std::max(parent.depth, depth);
    m_deepest = std::max(m_deepest, parent.depth);
    if (parent.depth > kMaxTreeDepth) RaiseHere("Expression too complex");
  }
  void Adopt(Expression& parent, ExpressionPtr child) {
    Deepen(parent, child->depth + 1);
    parent.args.push_back(std::move(child));
  }

  // One level of left-associative operators; `match` takes the operator at hand and returns its name.
  template <typename Operand, typename Match>
  ExpressionPtr ParseChain(Operand operand, Match match) {
    ExpressionPtr first = (this->*operand)();
    std::string name = match();
    if (name.empty()) return first;
    ExpressionPtr chain = Make(ExpressionKind::kChain);
    Adopt(*chain, std::move(first));
    while (!name.empty()) {
      chain->operators.push_back(std::move(name));
      Adopt(*chain, (this->*operand)());
      name = match();
    }
    return chain;
  }

  ExpressionPtr ParseExpression() {
    DepthGuard guard(*this);
    return ParseChain(&Parser::ParseAnd, [this] { return std::string(TakeWord("OR") ? "OR" : ""); });
  }
  ExpressionPtr ParseAnd() {
    return ParseChain(&Parser::ParseNot, [this] { return std::string(TakeWord("AND") ? "AND" : ""); });
  }
  ExpressionPtr ParseNot() {
    if (!IsWord(Current(), "NOT")) return ParseComparison();
    DepthGuard guard(*this);
    Advance();
    ExpressionPtr expression = Make(ExpressionKind::kNot);
    Adopt(*expression, ParseNot());
    return expression;
  }

  std::string TakeComparison() {
    constexpr std::string_view kOperators[] = {"=", "<>", "<", ">", "<=", ">=", "==", "!="};
    for (const std::string_view symbol : kOperators) {
      if (!TakeSymbol(symbol)) continue;
      return symbol == "==" ? "=" : symbol == "!=" ? "<>" : std::string(symbol);
    }
    return {};
  }

  ExpressionPtr ParseComparison() {
    ExpressionPtr left = ParseConcatenation();
    for (;;) {
      ExpressionPtr node;
      if (std::string name = TakeComparison(); !name.empty()) {
        node = Make(ExpressionKind::kCompare);
        node->operators.push_back(std::move(name));
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

  static bool IsTestWord(const Token& token) {
    return IsWord(token, "LIKE") || IsWord(token, "BETWEEN") || IsWord(token, "IN");
  }

  ExpressionPtr ParseTest(ExpressionPtr left) {
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

  ExpressionPtr ParseConcatenation() {
    return ParseChain(&Parser::ParseSum, [this] {
      return std::string(TakeSymbol("&") ? "&" : TakeSymbol("||") ? "||" : "");
    });
  }
  ExpressionPtr ParseSum() {
    return ParseChain(&Parser::ParseProduct, [this] {
      return std::string(TakeSymbol("+") ? "+" : TakeSymbol("-") ? "-" : "");
    });
  }
  ExpressionPtr ParseProduct() {
    return ParseChain(&Parser::ParseUnary, [this]() -> std::string {
      if (TakeSymbol("*")) return "*";
      if (TakeSymbol("/")) return "/";
      if (TakeSymbol("\\")) return "\\";
      if (TakeSymbol("%") || TakeWord("MOD")) return "%";
      return {};
    });
  }

  ExpressionPtr ParseUnary() {
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

  ExpressionPtr ParsePostfix() {
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

  ExpressionPtr ParsePrimary() {
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
        Advance();
        ExpressionPtr node = Make(ExpressionKind::kParameter);
        node->number = ++m_parameters;
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

  ExpressionPtr ParseWord() {
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
  ExpressionPtr ParseColumn() {
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

  void ParseArguments(Expression& node) {
    do {
      Adopt(node, ParseExpression());
    } while (TakeSymbol(","));
  }

  ExpressionPtr ParseFunction() {
    ExpressionPtr node = Make(ExpressionKind::kFunction);
    node->text = Advance().value;
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

  ExpressionPtr ParseCase() {
    DepthGuard guard(*this);
    Advance();
    ExpressionPtr node = Make(ExpressionKind::kCase);
    if (!IsWord(Current(), "WHEN")) {
      node->operators.push_back("base");
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

  ExpressionPtr ParseCast() {
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

  void AdoptQuery(Expression& node) {
    DepthGuard guard(*this);
    node.query = std::make_unique<SelectStatement>(ParseSelect());
    Deepen(node, m_deepest + 1);
  }

  // ---- FROM

  TableRef ParseTableRef() {
    DepthGuard guard(*this);
    TableRef table;
    if (TakeSymbol("(")) {
      if (IsWord(Current(), "SELECT")) {
        table.query = std::make_unique<SelectStatement>(ParseSelect());
        NeedSymbol(")");
        table.alias = TakeAlias();
        return table;
      }
      auto chain = std::make_unique<JoinChain>(ParseJoinChain());
      NeedSymbol(")");
      if (chain->joins.empty()) return std::move(chain->first);
      table.nested = std::move(chain);
      return table;
    }
    table.name = NeedTableName();
    table.alias = TakeAlias();
    return table;
  }

  enum class Side { kNone, kInner, kLeft, kRight, kCross };

  Side TakeJoin() {
    Side side = Side::kNone;
    if (TakeWord("JOIN")) return Side::kInner;
    if (TakeWord("INNER"))
      side = Side::kInner;
    else if (TakeWord("LEFT"))
      side = Side::kLeft;
    else if (TakeWord("RIGHT"))
      side = Side::kRight;
    else if (TakeWord("CROSS"))
      side = Side::kCross;
    else
      return side;
    if (side == Side::kLeft || side == Side::kRight) TakeWord("OUTER");
    NeedWord("JOIN");
    return side;
  }

  static TableRef AsTable(JoinChain chain) {
    if (chain.joins.empty()) return std::move(chain.first);
    TableRef table;
    table.nested = std::make_unique<JoinChain>(std::move(chain));
    return table;
  }

  // A bracketed join that stands first needs no brackets.
  static JoinChain AsChain(TableRef table) {
    if (table.nested) return std::move(*table.nested);
    JoinChain chain;
    chain.first = std::move(table);
    return chain;
  }

  JoinChain ParseJoinChain() {
    JoinChain chain = AsChain(ParseTableRef());
    for (Side side = TakeJoin(); side != Side::kNone; side = TakeJoin()) {
      if (++m_joins > kMaxJoins) RaiseHere("Too many tables");
      TableRef table = ParseTableRef();
      Join join;
      if (side != Side::kCross) {
        NeedWord("ON");
        join.on = ParseExpression();
      }
      if (side == Side::kRight) {
        join.type = JoinType::kLeft;
        join.table = AsTable(std::move(chain));
        chain = AsChain(std::move(table));
      } else {
        join.type = side == Side::kLeft    ? JoinType::kLeft
                    : side == Side::kCross ? JoinType::kCross
                                           : JoinType::kInner;
        join.table = std::move(table);
      }
      chain.joins.push_back(std::move(join));
    }
    return chain;
  }

  // ---- statements

  SelectItem ParseSelectItem() {
    SelectItem item;
    if (TakeSymbol("*")) return item;
    if (AtName() && IsSymbol(Ahead(), ".") && IsSymbol(Ahead(2), "*")) {
      item.starQualifier = Advance().value;
      Advance();
      Advance();
      return item;
    }
    item.expression = ParseExpression();
    item.alias = TakeAlias();
    return item;
  }

  std::int64_t NeedCount() {
    std::int64_t count = 0;
    const std::string_view text = Current().value;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
    if (Current().kind != TokenKind::kNumber || error != std::errc() || end != text.data() + text.size()) {
      RaiseHere("Syntax error (number expected)");
    }
    Advance();
    return count;
  }

  SelectCore ParseSelectCore() {
    NeedWord("SELECT");
    SelectCore core;
    if (TakeWord("DISTINCT") || TakeWord("DISTINCTROW")) {
      core.distinct = true;
    } else {
      TakeWord("ALL");
    }
    if (IsWord(Current(), "TOP") && Ahead().kind == TokenKind::kNumber) {
      Advance();
      core.top = NeedCount();
      if (IsWord(Current(), "PERCENT")) RaiseHere("Syntax error");
    }
    do {
      core.items.push_back(ParseSelectItem());
    } while (TakeSymbol(","));
    if (TakeWord("FROM")) {
      do {
        core.from.push_back(ParseJoinChain());
        if (++m_joins > kMaxJoins) RaiseHere("Too many tables");
      } while (TakeSymbol(","));
    }
    if (TakeWord("WHERE")) core.where = ParseExpression();
    if (TakeWord("GROUP")) {
      NeedWord("BY");
      do {
        core.groupBy.push_back(ParseExpression());
      } while (TakeSymbol(","));
    }
    if (TakeWord("HAVING")) core.having = ParseExpression();
    return core;
  }

  SelectStatement ParseSelect() {
    DepthGuard guard(*this);
    const std::size_t joinsBefore = m_joins;
    SelectStatement statement;
    statement.cores.push_back(ParseSelectCore());
    while (TakeWord("UNION")) {
      if (statement.cores.size() > 400) RaiseHere("Query is too complex");
      m_joins = 0;
      statement.unionAll.push_back(TakeWord("ALL"));
      statement.cores.push_back(ParseSelectCore());
    }
    if (TakeWord("ORDER")) {
      NeedWord("BY");
      do {
        OrderItem item;
        item.expression = ParseExpression();
        item.descending = TakeWord("DESC");
        if (!item.descending) TakeWord("ASC");
        statement.orderBy.push_back(std::move(item));
      } while (TakeSymbol(","));
    }
    if (TakeWord("LIMIT")) statement.cores.front().top = NeedCount();
    m_joins = joinsBefore;
    return statement;
  }

  UpdateStatement ParseUpdate() {
    UpdateStatement statement;
    statement.table.name = NeedTableName();
    if (!IsWord(Current(), "SET")) statement.table.alias = TakeAlias();
    NeedWord("SET");
    do {
      ExpressionPtr column = ParseColumn();
      NeedSymbol("=");
      statement.assignments.emplace_back(std::move(column->text), ParseExpression());
    } while (TakeSymbol(","));
    if (TakeWord("WHERE")) statement.where = ParseExpression();
    return statement;
  }

  InsertStatement ParseInsert() {
    InsertStatement statement;
    NeedWord("INTO");
    statement.table = NeedTableName();
    if (TakeSymbol("(")) {
      do {
        statement.columns.push_back(ParseColumn()->text);
      } while (TakeSymbol(","));
      NeedSymbol(")");
    }
    if (TakeWord("VALUES")) {
      do {
        NeedSymbol("(");
        std::vector<ExpressionPtr>& row = statement.rows.emplace_back();
        do {
          row.push_back(ParseExpression());
        } while (TakeSymbol(","));
        NeedSymbol(")");
      } while (TakeSymbol(","));
    } else {
      statement.query = std::make_unique<SelectStatement>(ParseSelect());
    }
    return statement;
  }

  DeleteStatement ParseDelete() {
    DeleteStatement statement;
    if (!TakeSymbol("*") && IsSymbol(Ahead(), ".") && IsSymbol(Ahead(2), "*")) {
      Advance();
      Advance();
      Advance();
    }
    NeedWord("FROM");
    statement.table.name = NeedTableName();
    statement.table.alias = TakeAlias();
    if (TakeWord("WHERE")) statement.where = ParseExpression();
    return statement;
  }

  Statement ParseStatement() {
    if (IsWord(Current(), "SELECT")) return ParseSelect();
    if (TakeWord("UPDATE")) return ParseUpdate();
    if (TakeWord("INSERT")) return ParseInsert();
    if (TakeWord("DELETE")) return ParseDelete();
    RaiseHere("Invalid SQL statement; expected 'DELETE', 'INSERT', 'SELECT' or 'UPDATE'. Syntax error");
  }

  std::string_view m_source;
  std::vector<Token> m_tokens;
  std::size_t m_index = 0;
  std::size_t m_joins = 0;
  int m_depth = 0;
  int m_deepest = 0;
  int m_parameters = 0;
};

}  // namespace

Statement Parse(std::string_view source) {
  return Parser(source).Run();
}

}  // namespace kxrestore::engine::jet_sql
