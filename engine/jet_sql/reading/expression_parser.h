// The expressions of a statement, from OR down to names and literals.
#pragma once

#include <optional>
#include <string_view>

#include "engine/jet_sql/ast.h"
#include "engine/jet_sql/reading/token_reader.h"

namespace kxrestore::engine::jet_sql {

class ExpressionParser : public TokenReader {
 protected:
  // `parameters`: how many the text may hold.
  ExpressionParser(std::string_view source, std::size_t parameters)
      : TokenReader(source), m_maxParameters(parameters) {}
  ~ExpressionParser() = default;

  ExpressionPtr ParseExpression();
  ExpressionPtr ParseColumn();  // column, table.column, schema.table.column, [table.column]

  virtual SelectStatement ParseSelect() = 0;

 private:
  // One level of left-associative operators.
  ExpressionPtr ParseChain(int level);
  std::optional<Operator> TakeOperator(int level);

  ExpressionPtr Make(ExpressionKind kind);
  void Deepen(Expression& parent, int depth);
  void Adopt(Expression& parent, ExpressionPtr child);
  ExpressionPtr ParseNot();
  ExpressionPtr ParseComparison();
  static bool IsTestWord(const Token& token);
  ExpressionPtr ParseTest(ExpressionPtr left);
  ExpressionPtr ParseUnary();
  ExpressionPtr ParsePostfix();
  ExpressionPtr ParsePrimary();
  ExpressionPtr ParseWord();
  void ParseArguments(Expression& node);
  ExpressionPtr ParseFunction();
  ExpressionPtr ParseCase();
  ExpressionPtr ParseCast();
  void AdoptQuery(Expression& node);

  std::size_t m_maxParameters, m_parameters = 0;
  int m_deepest = 0;  // of all trees so far, so that queries within expressions count in full
};

}  // namespace kxrestore::engine::jet_sql
