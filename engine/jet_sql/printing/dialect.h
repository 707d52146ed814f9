// What differs between the databases that statements are printed for. Operands arrive printed, in brackets
// where they need them.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/jet_sql/ast.h"
#include "engine/jet_sql/printing/printed_sql.h"

namespace kxrestore::engine::jet_sql {

// How a dialect writes a function that is called with this number of arguments. $1, $2, ... in `text` stand
// for the arguments.
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
  virtual PrintedSql Parameter(std::int64_t number) const = 0;

  // operand = True / operand = False: any other number than 0 is true.
  virtual PrintedSql BooleanTest(const PrintedSql& operand, bool expected, ValueKind kind) const;
  // Whether the database has a Boolean type, so that a condition is a value and a Boolean value a condition.
  // Otherwise the printer converts between them; `number` is 1, 0 or Null.
  virtual bool HasBooleans() const { return true; }
  virtual PrintedSql BooleanValue(const PrintedSql& number) const { return number; }
  // Max and Min of a Boolean are Or and And.
  virtual PrintedSql BooleanExtreme(const PrintedSql& operand, bool maximum) const;

  // `pattern` is the pattern as parsed, `printed` as printed.
  virtual PrintedSql Like(const PrintedSql& operand, const Expression& pattern, const PrintedSql& printed,
                          bool negated) const = 0;
  // Converts a mask that is bound as a parameter.
  virtual std::string Mask(std::string_view mask) const { return std::string(mask); }

  // left & right: Null counts as an empty text.
  virtual std::string_view ConcatenationSign() const { return "||"; }
  virtual PrintedSql EmptyIfNull(const PrintedSql& operand) const;
  virtual PrintedSql Divide(const PrintedSql& left, const PrintedSql& right, bool whole) const = 0;

  // First(x) of a group. Any row of the group may supply the value.
  virtual PrintedSql First(const PrintedSql& operand, ValueKind kind) const = 0;
  virtual bool FirstIsAggregate() const = 0;

  // A function that Functions() does not name keeps its name.
  PrintedSql Call(const Expression& call, const std::vector<PrintedSql>& arguments) const;

  // A column to sort by, so that texts come in the order that people expect.
  virtual PrintedSql SortKey(const PrintedSql& column, ValueKind /*kind*/) const { return column; }
  // A column to group by, so that texts which differ in case only are one group.
  virtual PrintedSql GroupKey(const PrintedSql& column, ValueKind /*kind*/) const { return column; }

  // Whether the row limit is LIMIT n at the end of the statement rather than TOP n after SELECT.
  virtual bool LimitAtEnd() const = 0;
  // Whether views and nested statements accept ORDER BY without TOP.
  virtual bool OrdersWithin() const { return true; }

  virtual std::string Collation(std::string_view name) const { return Identifier(name); }

 protected:
  virtual std::span<const FunctionMapping> Functions() const = 0;
};

// SQLite. Other programs read saved queries too, so their text uses only what every SQLite has. Statements of
// this program also use the functions and the collation named here, which the back end registers.
class SqliteDialect : public Dialect {
 public:
  static constexpr const char* kLikeFunction = "kx_like";           // kx_like(text, pattern)
  static constexpr const char* kLastPlaceFunction = "kx_instrrev";  // (text, piece), from 1, 0 for none
  static constexpr const char* kFoldFunction = "kx_fold";           // (value), a text without its case
  static constexpr const char* kCollation = "kx_text_order";

  explicit SqliteDialect(bool savedQuery) : m_savedQuery(savedQuery) {}

  std::string Identifier(std::string_view name) const override;
  std::string Boolean(bool value) const override { return value ? "1" : "0"; }
  PrintedSql Parameter(std::int64_t number) const override { return "?" + std::to_string(number); }
  PrintedSql Like(const PrintedSql& operand, const Expression& pattern, const PrintedSql& printed,
                  bool negated) const override;
  PrintedSql Divide(const PrintedSql& left, const PrintedSql& right, bool whole) const override;
  PrintedSql First(const PrintedSql& operand, ValueKind /*kind*/) const override { return operand; }
  bool FirstIsAggregate() const override { return false; }
  PrintedSql SortKey(const PrintedSql& column, ValueKind kind) const override;
  PrintedSql GroupKey(const PrintedSql& column, ValueKind kind) const override;
  bool LimitAtEnd() const override { return true; }

 protected:
  std::span<const FunctionMapping> Functions() const override;

 private:
  bool m_savedQuery;
};

}  // namespace kxrestore::engine::jet_sql
