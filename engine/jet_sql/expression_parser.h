// The expressions of a statement, from OR down to names and literals.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "engine/jet_sql/ast.h"
#include "engine/jet_sql/token_reader.h"

namespace kxrestore::engine::jet_sql {

class ExpressionParser : public TokenReader {
 protected:
  // `extracted`: the text holds parameters that ExtractLiterals put there.
  ExpressionParser(std::string_view source, bool extracted) : TokenReader(source), m_extracted(extracted) {}
  ~ExpressionParser() = default;

  ExpressionPtr ParseExpression();
  ExpressionPtr ParseColumn();  // column, table.column, schema.table.column, [table.column]

  virtual SelectStatement ParseSelect() = 0;

 private:
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

  ExpressionPtr Make(ExpressionKind kind);
  void Deepen(Expression& parent, int depth);
  void Adopt(Expression& parent, ExpressionPtr child);
  ExpressionPtr ParseAnd();
  ExpressionPtr ParseNot();
  std::string TakeComparison();
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

  bool m_extracted;
  int m_parameters = 0;
  int m_deepest = 0;  // of all trees so far, so that queries within expressions count in full
};

}  // namespace kxrestore::engine::jet_sql
