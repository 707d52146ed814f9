// What differs between the kinds of databases that statements are printed for. Operands are handed over
// printed, in brackets where they need them.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/jet_sql/ast.h"

namespace kxrestore::engine::jet_sql {

// A function of the catalog's dialect with this number of arguments, which stand in `text` as $1, $2, ...
struct FunctionMapping {
  Function function;
  std::size_t arguments;
  std::string_view text;
};

class Dialect {
 public:
  virtual ~Dialect() = default;

  virtual std::string Identifier(std::string_view name) const = 0;
  virtual std::string Text(std::string_view text) const;  // in apostrophes, doubled inside
  virtual std::string Date(const DateTime& date) const;   // 'YYYY-MM-DD HH:MM:SS'
  virtual std::string Boolean(bool value) const = 0;
  virtual std::string Parameter(std::int64_t number) const = 0;

  // operand = True / operand = False: any other number than 0 is true.
  virtual std::string BooleanTest(const std::string& operand, bool expected, ValueKind kind) const;
  // Whether a condition is a value like others and a Boolean value a condition. Otherwise the one is made of
  // the other: `number` is 1, 0 or Null.
  virtual bool HasBooleans() const { return true; }
  virtual std::string BooleanValue(const std::string& number) const { return number; }
  // Max and Min of a Boolean: Or and And.
  virtual std::string BooleanExtreme(const std::string& operand, bool maximum) const;

  // `pattern` is the pattern as parsed, `printed` as printed.
  virtual std::string Like(const std::string& operand, const Expression& pattern, const std::string& printed,
                           bool negated) const = 0;
  // What a mask becomes where it is given as a parameter.
  virtual std::string Mask(std::string_view mask) const { return std::string(mask); }

  // left & right: Null counts as an empty text.
  virtual std::string_view ConcatenationSign() const { return "||"; }
  virtual std::string EmptyIfNull(const std::string& operand) const;
  virtual std::string Divide(const std::string& left, const std::string& right, bool whole) const = 0;

  // First(x) of a group whose rows agree, or of which any row may answer.
  virtual std::string First(const std::string& operand, ValueKind kind) const = 0;
  virtual bool FirstIsAggregate() const = 0;

  // A function that Functions() does not name keeps its name.
  std::string Call(const Expression& call, const std::vector<std::string>& arguments) const;

  // A column to sort by, so that texts come in the order that people expect.
  virtual std::string SortKey(const std::string& column, ValueKind /*kind*/) const { return column; }
  // A column to group by, so that texts which differ in case only are one group.
  virtual std::string GroupKey(const std::string& column, ValueKind /*kind*/) const { return column; }

  // TOP n stands behind SELECT, or LIMIT n at the end.
  virtual bool LimitAtEnd() const = 0;
  // Whether ORDER BY is understood in views and nested statements, too, and not only where TOP asks for it.
  virtual bool OrdersWithin() const { return true; }

  virtual std::string Collation(std::string_view name) const { return Identifier(name); }

 protected:
  virtual std::span<const FunctionMapping> Functions() const = 0;
};

// For SQLite. The text of a saved query is read by other programs too, so it uses what every SQLite has;
// statements of this program's own use the functions and the collation named here, which the back end
// registers.
class SqliteDialect : public Dialect {
 public:
  static constexpr const char* kLikeFunction = "kx_like";           // kx_like(text, pattern)
  static constexpr const char* kLastPlaceFunction = "kx_instrrev";  // (text, piece), from 1, 0 for none
  static constexpr const char* kFoldFunction = "kx_fold";           // (value), a text without its case
  static constexpr const char* kCollation = "kx_text_order";

  explicit SqliteDialect(bool savedQuery) : m_savedQuery(savedQuery) {}

  std::string Identifier(std::string_view name) const override;
  std::string Boolean(bool value) const override { return value ? "1" : "0"; }
  std::string Parameter(std::int64_t number) const override { return "?" + std::to_string(number); }
  std::string Like(const std::string& operand, const Expression& pattern, const std::string& printed,
                   bool negated) const override;
  std::string Divide(const std::string& left, const std::string& right, bool whole) const override;
  std::string First(const std::string& operand, ValueKind /*kind*/) const override { return operand; }
  bool FirstIsAggregate() const override { return false; }
  std::string SortKey(const std::string& column, ValueKind kind) const override;
  std::string GroupKey(const std::string& column, ValueKind kind) const override;
  bool LimitAtEnd() const override { return true; }

 protected:
  std::span<const FunctionMapping> Functions() const override;

 private:
  bool m_savedQuery;
};

}  // namespace kxrestore::engine::jet_sql
