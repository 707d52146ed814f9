#include "engine/jet_sql/reading/parser.h"

#include <charconv>

#include "base/text.h"
#include "engine/error_numbers.h"
#include "engine/jet_sql/reading/expression_parser.h"

namespace kxrestore::engine::jet_sql {
namespace {

constexpr std::size_t kMaxJoins = 63;
constexpr std::size_t kMaxUnions = 400;

class Parser final : private ExpressionParser {
 public:
  Parser(std::string_view source, std::size_t parameters) : ExpressionParser(source, parameters) {}

  Statement Run() {
    Statement statement = ParseStatement();
    const bool ended = TakeSymbol(";");
    if (Current().kind != TokenKind::kEnd) {
      if (!ended) RaiseHere("Syntax error (missing operator)");
      Raise(error_number::kTextAfterEnd, "Characters found after end of SQL statement: '" +
                                             std::string(LeftCharacters(Rest(), 80)) + "'.");
    }
    return statement;
  }

 private:
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
    if (TakeWord("JOIN")) return Side::kInner;
    const Side side = TakeWord("INNER")   ? Side::kInner
                      : TakeWord("LEFT")  ? Side::kLeft
                      : TakeWord("RIGHT") ? Side::kRight
                      : TakeWord("CROSS") ? Side::kCross
                                          : Side::kNone;
    if (side == Side::kLeft || side == Side::kRight) TakeWord("OUTER");
    if (side != Side::kNone) NeedWord("JOIN");
    return side;
  }

  static TableRef AsTable(JoinChain chain) {
    if (chain.joins.empty()) return std::move(chain.first);
    TableRef table;
    table.nested = std::make_unique<JoinChain>(std::move(chain));
    return table;
  }

  // A bracketed join at the start needs no brackets.
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

  SelectStatement ParseSelect() override {
    DepthGuard guard(*this);
    const std::size_t joinsBefore = m_joins;
    SelectStatement statement;
    statement.cores.push_back(ParseSelectCore());
    while (TakeWord("UNION")) {
      if (statement.cores.size() > kMaxUnions) RaiseHere("Query is too complex");
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

  std::size_t m_joins = 0;
};

}  // namespace

Statement Parse(std::string_view source, std::size_t parameters) {
  return Parser(source, parameters).Run();
}

}  // namespace kxrestore::engine::jet_sql
