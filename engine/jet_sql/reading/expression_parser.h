// The expressions of a statement, from OR down to names and literals.
#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "engine/jet_sql/ast.h"
#include "engine/jet_sql/reading/token_reader.h"

namespace kxrestore::engine::jet_sql {

class ExpressionParser : public TokenReader {
 protected:
  // `parameters`: how many the text may hold.
  ExpressionParser(std::string_view source, std::size_t parameters)
      : TokenReader(source), m_mostParameters(parameters) {}
  ~ExpressionParser() = default;

  ExpressionPtr ParseExpression();
  ExpressionPtr ParseColumn();  // column, table.column, schema.table.column, [table.column]

  virtual SelectStatement ParseSelect() = 0;

 private:
  using Taken = std::optional<Operator>;
  struct Sign {
    std::string_view text;
    Operator sign;
  };
  Taken TakeOperator(std::initializer_list<Sign> signs);

  // One level of left-associative operators; `take` takes the operator at hand.
  template <typename Operand, typename Take>
  ExpressionPtr ParseChain(Operand operand, Take take) {
    ExpressionPtr first = (this->*operand)();
    Taken sign = take();
    if (!sign) return first;
    ExpressionPtr chain = Make(ExpressionKind::kChain);
    Adopt(*chain, std::move(first));
    for (; sign; sign = take()) {
      chain->operators.push_back(*sign);
      Adopt(*chain, (this->*operand)());
    }
    return chain;
  }

  ExpressionPtr Make(ExpressionKind kind);
  void Deepen(Expression& parent, int depth);
  void Adopt(Expression& parent, ExpressionPtr child);
  ExpressionPtr ParseAnd();
  ExpressionPtr ParseNot();
  ExpressionPtr ParseComparison();
  static bool IsTestWord(const Token& token);
  ExpressionPtr ParseTest(ExpressionPtr left);
  ExpressionPtr ParseConcatenation();
  ExpressionPtr ParseSum();
  ExpressionPtr ParseProduct();
  ExpressionPtr ParseUnary();
  ExpressionPtr ParsePostfix();
  ExpressionPtr ParsePrimary();
  ExpressionPtr ParseWord();
  void ParseArguments(Expression& node);
  ExpressionPtr ParseFunction();
  ExpressionPtr ParseCase();
  ExpressionPtr ParseCast();
  void AdoptQuery(Expression& node);

  std::size_t m_mostParameters, m_parameters = 0;
  int m_deepest = 0;  // of all trees so far, so that queries within expressions count in full
};

}  // namespace kxrestore::engine::jet_sql
