// Dialects of database servers. They print statements that went through ResolveNames: names are spelled as
// the server does, and kinds of values are known.
#pragma once

#include "engine/jet_sql/printing/dialect.h"

namespace kxrestore::engine::jet_sql {

// Common base. Drivers number parameters by their order in the text.
class ServerDialect : public Dialect {
 public:
  explicit ServerDialect(char openQuote, char closeQuote)
      : m_openQuote(openQuote), m_closeQuote(closeQuote) {}

  std::string Identifier(std::string_view name) const override;
  PrintedSql Parameter(std::int64_t number) const override { return PrintedSql::Parameter(number); }

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
  PrintedSql BooleanTest(const PrintedSql& operand, bool expected, ValueKind kind) const override;
  PrintedSql BooleanExtreme(const PrintedSql& operand, bool maximum) const override;
  PrintedSql Like(const PrintedSql& operand, const Expression& pattern, const PrintedSql& printed,
                  bool negated) const override;
  std::string Mask(std::string_view mask) const override;
  PrintedSql Divide(const PrintedSql& left, const PrintedSql& right, bool whole) const override;
  PrintedSql First(const PrintedSql& operand, ValueKind kind) const override;
  bool FirstIsAggregate() const override { return true; }
  PrintedSql SortKey(const PrintedSql& column, ValueKind kind) const override;
  PrintedSql GroupKey(const PrintedSql& column, ValueKind kind) const override;
  bool LimitAtEnd() const override { return true; }

 protected:
  std::span<const FunctionMapping> Functions() const override;

 private:
  PrintedSql Lower(const PrintedSql& operand) const;

  Order m_order;
  bool m_collatesCase;
};

}  // namespace kxrestore::engine::jet_sql
