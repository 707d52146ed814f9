// Dialects of database servers. They print statements that went through ResolveNames: names are spelled as
// the server does, and kinds of values are known.
#pragma once

#include "engine/jet_sql/printing/dialect.h"

namespace kxrestore::engine::jet_sql {

// Common base. Drivers number parameters by their order in the text, so a parameter first prints as a mark
// with its number; NumberParameters turns the marks into "?".
class ServerDialect : public Dialect {
 public:
  explicit ServerDialect(char openQuote, char closeQuote)
      : m_openQuote(openQuote), m_closeQuote(closeQuote) {}

  std::string Identifier(std::string_view name) const override;
  std::string Parameter(std::int64_t number) const override;

  // Returns the parameter numbers in the order of the text.
  static std::vector<std::int64_t> NumberParameters(std::string& sql);

 private:
  char m_openQuote, m_closeQuote;
};

class PostgresDialect final : public ServerDialect {
 public:
  // How to sort and fold texts where the database's own locale sorts by code point, or folds ASCII only.
  enum class Order { kOwn, kCollation, kPlainLetters };
  PostgresDialect(Order order, bool collatesCase)
      : ServerDialect('"', '"'), m_order(order), m_collatesCase(collatesCase) {}

  std::string Boolean(bool value) const override { return value ? "TRUE" : "FALSE"; }
  std::string BooleanTest(const std::string& operand, bool expected, ValueKind kind) const override;
  std::string BooleanExtreme(const std::string& operand, bool maximum) const override;
  std::string Like(const std::string& operand, const Expression& pattern, const std::string& printed,
                   bool negated) const override;
  std::string Mask(std::string_view mask) const override;
  std::string Divide(const std::string& left, const std::string& right, bool whole) const override;
  std::string First(const std::string& operand, ValueKind kind) const override;
  bool FirstIsAggregate() const override { return true; }
  std::string SortKey(const std::string& column, ValueKind kind) const override;
  std::string GroupKey(const std::string& column, ValueKind kind) const override;
  bool LimitAtEnd() const override { return true; }

 protected:
  std::span<const FunctionMapping> Functions() const override;

 private:
  std::string Lower(const std::string& operand) const;

  Order m_order;
  bool m_collatesCase;
};

}  // namespace kxrestore::engine::jet_sql
