// What differs between the databases that statements are printed for. Operands arrive printed, in brackets
// where they need them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "engine/jet_sql/ast.h"
#include "engine/jet_sql/printing/printed_sql.h"

namespace kxrestore::engine::jet_sql {

// How the dialects write a function that is called with this number of arguments. $1, $2, ... stand for the
// arguments.
struct FunctionMapping {
  Function function;
  std::size_t arguments;
  std::string_view sqlite, postgres, tsql;
};

// The differences that are a matter of wording. $1 stands for an operand.
struct DialectWords {
  std::string_view FunctionMapping::*functions;  // the column of the table of functions
  char openQuote, closeQuote;                    // of names
  std::string_view trueText, falseText;
  std::string_view integerType, realType;  // that divisions convert to
  std::string_view maxFlag, minFlag;       // Max and Min of a Boolean, which are Or and And
  std::string_view anyOfGroup;             // First() of a value of unknown kind
  std::string_view concatenation = "||";
  std::string_view emptyIfNull = "coalesce($1, '')";
  std::string_view flagType = {};  // of Boolean values, where conditions are not values
  bool firstIsAggregate = true;    // otherwise First() is printed as a plain column
  bool unknownIsFlag = false;      // a value of unknown kind is tested as a Boolean
  bool limitAtEnd = true;          // LIMIT n at the end of the statement, not TOP n after SELECT
  bool ordersWithin = true;        // views and nested statements accept ORDER BY without TOP
  bool quotesCollations = true;
  char dateSeparator = ' ';  // between day and time
};

class Dialect {
 public:
  explicit Dialect(const DialectWords& words) : m_words(words) {}
  virtual ~Dialect() = default;

  const DialectWords& Words() const { return m_words; }

  virtual std::string Identifier(std::string_view name) const;
  virtual std::string Text(std::string_view text) const;  // in apostrophes, doubled inside
  std::string Date(const DateTime& date) const;           // 'YYYY-MM-DD HH:MM:SS'
  PrintedSql Boolean(bool value) const { return value ? m_words.trueText : m_words.falseText; }
  // Drivers number parameters by their order in the text.
  virtual PrintedSql Parameter(std::int64_t number) const { return PrintedSql::Parameter(number); }
  std::string Collation(std::string_view name) const;

  // operand = True / operand = False: any other number than 0 is true.
  PrintedSql BooleanTest(const PrintedSql& operand, bool expected, ValueKind kind) const;
  PrintedSql BooleanExtreme(const PrintedSql& operand, bool maximum) const;
  // left & right: Null counts as an empty text.
  PrintedSql EmptyIfNull(const PrintedSql& operand) const;
  PrintedSql Divide(const PrintedSql& left, const PrintedSql& right, bool whole) const;
  // First(x) of a group. Any row of the group may supply the value.
  PrintedSql First(const PrintedSql& operand, ValueKind kind) const;
  // A function that the table does not name keeps its name.
  PrintedSql Call(const Expression& call, const std::vector<PrintedSql>& arguments) const;

  // `pattern` is the pattern as parsed, `printed` as printed.
  virtual PrintedSql Like(const PrintedSql& operand, const Expression& pattern, const PrintedSql& printed,
                          bool negated) const = 0;
  // Converts a mask that is bound as a parameter.
  virtual std::string Mask(std::string_view mask) const { return std::string(mask); }

  // A column to sort by, so that texts come in the order that people expect.
  virtual PrintedSql SortKey(const PrintedSql& column, ValueKind kind) const = 0;
  // A column to group by, so that texts which differ in case only are one group.
  virtual PrintedSql GroupKey(const PrintedSql& column, ValueKind kind) const = 0;

 private:
  const DialectWords& m_words;
};

// SQLite. Other programs read saved queries too, so their text uses only what every SQLite has. Statements of
// this program also use the functions and the collation named here, which the back end registers.
class SqliteDialect : public Dialect {
 public:
  static constexpr const char* kLikeFunction = "kx_like";           // kx_like(text, pattern)
  static constexpr const char* kLastPlaceFunction = "kx_instrrev";  // (text, piece), from 1, 0 for none
  static constexpr const char* kFoldFunction = "kx_fold";           // (value), a text without its case
  static constexpr const char* kCollation = "kx_text_order";

  explicit SqliteDialect(bool savedQuery) : SqliteDialect(savedQuery, kWords) {}

  std::string Identifier(std::string_view name) const override;
  PrintedSql Parameter(std::int64_t number) const override { return "?" + std::to_string(number); }
  PrintedSql Like(const PrintedSql& operand, const Expression& pattern, const PrintedSql& printed,
                  bool negated) const override;
  PrintedSql SortKey(const PrintedSql& column, ValueKind kind) const override;
  PrintedSql GroupKey(const PrintedSql& column, ValueKind kind) const override;

 protected:
  SqliteDialect(bool savedQuery, const DialectWords& words) : Dialect(words), m_savedQuery(savedQuery) {}
  static constexpr DialectWords kWords = {.functions = &FunctionMapping::sqlite,
                                          .openQuote = '"',
                                          .closeQuote = '"',
                                          .trueText = "1",
                                          .falseText = "0",
                                          .integerType = "INTEGER",
                                          .realType = "REAL",
                                          .maxFlag = "max($1)",
                                          .minFlag = "min($1)",
                                          .anyOfGroup = "$1",
                                          .firstIsAggregate = false};

 private:
  bool m_savedQuery;
};

}  // namespace kxrestore::engine::jet_sql
