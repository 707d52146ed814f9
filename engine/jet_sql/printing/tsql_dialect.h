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
  std::string BooleanTest(const std::string& operand, bool expected, ValueKind kind) const override;
  bool HasBooleans() const override { return false; }
  std::string BooleanValue(const std::string& number) const override { return "CAST(" + number + " AS bit)"; }
  std::string BooleanExtreme(const std::string& operand, bool maximum) const override;
  std::string Like(const std::string& operand, const Expression& pattern, const std::string& printed,
                   bool negated) const override;
  std::string Mask(std::string_view mask) const override;
  std::string_view ConcatenationSign() const override { return "+"; }
  std::string EmptyIfNull(const std::string& operand) const override;
  std::string Divide(const std::string& left, const std::string& right, bool whole) const override;
  std::string First(const std::string& operand, ValueKind kind) const override;
  bool FirstIsAggregate() const override { return true; }
  std::string SortKey(const std::string& column, ValueKind kind) const override;
  std::string GroupKey(const std::string& column, ValueKind kind) const override {
    return SortKey(column, kind);
  }
  bool LimitAtEnd() const override { return false; }
  bool OrdersWithin() const override { return false; }
  std::string Collation(std::string_view name) const override { return std::string(name); }

 protected:
  std::span<const FunctionMapping> Functions() const override;

 private:
  std::string IgnoringCase(const std::string& operand) const;

  bool m_mindsCase;
};

}  // namespace kxrestore::engine::jet_sql
