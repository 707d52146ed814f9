// Dialects of database servers. They print statements that went through ResolveNames: names are spelled as
// the server does, and kinds of values are known.
#pragma once

#include "engine/jet_sql/printing/dialect.h"

namespace kxrestore::engine::jet_sql {

class PostgresDialect final : public Dialect {
 public:
  // How to sort and fold texts where the database's own locale sorts by code point, or folds ASCII only.
  enum class Order { kOwn, kCollation, kPlainLetters };
  PostgresDialect(Order order, bool collatesCase);

  PrintedSql Like(const PrintedSql& operand, const Expression& pattern, const PrintedSql& printed,
                  bool negated) const override;
  std::string Mask(std::string_view mask) const override;
  PrintedSql SortKey(const PrintedSql& column, ValueKind kind) const override;
  PrintedSql GroupKey(const PrintedSql& column, ValueKind kind) const override;

 private:
  PrintedSql Lower(const PrintedSql& operand) const;

  Order m_order;
  bool m_collatesCase;
};

// SQL Server.
class TsqlDialect final : public Dialect {
 public:
  // `caseSensitive`: the database's collation. The dialect ignores case in masks, groups and sort orders.
  explicit TsqlDialect(bool caseSensitive);

  std::string Text(std::string_view text) const override;
  PrintedSql Like(const PrintedSql& operand, const Expression& pattern, const PrintedSql& printed,
                  bool negated) const override;
  std::string Mask(std::string_view mask) const override;
  PrintedSql SortKey(const PrintedSql& column, ValueKind kind) const override;
  PrintedSql GroupKey(const PrintedSql& column, ValueKind kind) const override {
    return SortKey(column, kind);
  }

 private:
  PrintedSql IgnoringCase(const PrintedSql& operand) const;

  bool m_caseSensitive;
};

}  // namespace kxrestore::engine::jet_sql
