// SQL Server's dialect.
#pragma once

#include "engine/jet_sql/printing/server_dialects.h"

namespace kxrestore::engine::jet_sql {

class TsqlDialect final : public ServerDialect {
 public:
  // `mindsCase`: the database's collation is case-sensitive. The dialect ignores case in masks, groups and
  // sort orders.
  explicit TsqlDialect(bool mindsCase) : ServerDialect('[', ']'), m_mindsCase(mindsCase) {}

  std::string Text(std::string_view text) const override;
  std::string Date(const DateTime& date) const override;
  std::string Boolean(bool value) const override { return value ? "1" : "0"; }
  PrintedSql BooleanTest(const PrintedSql& operand, bool expected, ValueKind kind) const override;
  bool HasBooleans() const override { return false; }
  PrintedSql BooleanValue(const PrintedSql& number) const override { return "CAST(" + number + " AS bit)"; }
  PrintedSql BooleanExtreme(const PrintedSql& operand, bool maximum) const override;
  PrintedSql Like(const PrintedSql& operand, const Expression& pattern, const PrintedSql& printed,
                  bool negated) const override;
  std::string Mask(std::string_view mask) const override;
  std::string_view ConcatenationSign() const override { return "+"; }
  PrintedSql EmptyIfNull(const PrintedSql& operand) const override;
  PrintedSql Divide(const PrintedSql& left, const PrintedSql& right, bool whole) const override;
  PrintedSql First(const PrintedSql& operand, ValueKind kind) const override;
  bool FirstIsAggregate() const override { return true; }
  PrintedSql SortKey(const PrintedSql& column, ValueKind kind) const override;
  PrintedSql GroupKey(const PrintedSql& column, ValueKind kind) const override {
    return SortKey(column, kind);
  }
  bool LimitAtEnd() const override { return false; }
  bool OrdersWithin() const override { return false; }
  std::string Collation(std::string_view name) const override { return std::string(name); }

 protected:
  std::span<const FunctionMapping> Functions() const override;

 private:
  PrintedSql IgnoringCase(const PrintedSql& operand) const;

  bool m_mindsCase;
};

}  // namespace kxrestore::engine::jet_sql
