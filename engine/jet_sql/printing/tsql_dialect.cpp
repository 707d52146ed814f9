#include <algorithm>

#include "engine/jet_sql/printing/server_dialects.h"
#include "engine/jet_sql/reading/mask.h"

namespace kxrestore::engine::jet_sql {
namespace {

constexpr const char* kEscape = " ESCAPE '\\'";

// T separates day and time in the only form that is read the same in every language and date order.
constexpr DialectWords kWords = {.functions = &FunctionMapping::tsql,
                                 .openQuote = '[',
                                 .closeQuote = ']',
                                 .trueText = "1",
                                 .falseText = "0",
                                 .integerType = "bigint",
                                 .realType = "float",
                                 .maxFlag = "CAST(max(CAST($1 AS tinyint)) AS bit)",
                                 .minFlag = "CAST(min(CAST($1 AS tinyint)) AS bit)",
                                 .anyOfGroup = "min($1)",
                                 .concatenation = "+",
                                 .emptyIfNull = "coalesce(CAST($1 AS nvarchar(max)), '')",
                                 .flagType = "bit",
                                 .limitAtEnd = false,
                                 .ordersWithin = false,
                                 .quotesCollations = false,
                                 .dateSeparator = 'T'};

constexpr MaskSyntax kLike = {.anyRun = "%", .anyOne = "_", .literals = "%_[\\", .members = "^-[\\"};

}  // namespace

TsqlDialect::TsqlDialect(bool caseSensitive) : Dialect(kWords), m_caseSensitive(caseSensitive) {}

// Only texts beyond ASCII are marked as national: the mark makes the server convert a column that is not,
// which can cost the index.
std::string TsqlDialect::Text(std::string_view text) const {
  const bool national =
      std::any_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
  return (national ? "N" : "") + Dialect::Text(text);
}

std::string TsqlDialect::Mask(std::string_view mask) const {
  return PrintMask(ParseMask(mask), kLike);
}

PrintedSql TsqlDialect::IgnoringCase(const PrintedSql& operand) const {
  return m_caseSensitive ? "CAST(" + operand + " AS nvarchar(max)) COLLATE Latin1_General_CI_AS" : operand;
}

PrintedSql TsqlDialect::Like(const PrintedSql& operand, const Expression& pattern, const PrintedSql& printed,
                             bool negated) const {
  PrintedSql mask = printed;
  if (pattern.kind == ExpressionKind::kText) {
    mask = Text(Mask(pattern.text));
  } else if (pattern.kind != ExpressionKind::kParameter) {
    // The mask is computed on the server.
    for (const char* change :
         {"'\\', '\\\\'", "'%', '\\%'", "'_', '\\_'", "'[!', '[^'", "'*', '%'", "'?', '_'", "'#', '[0-9]'"}) {
      mask = "replace(" + mask + ", " + change + ")";
    }
  }
  return IgnoringCase(operand) + (negated ? " NOT LIKE " : " LIKE ") + mask + kEscape;
}

PrintedSql TsqlDialect::SortKey(const PrintedSql& column, ValueKind kind) const {
  return kind == ValueKind::kText ? IgnoringCase(column) : column;
}

}  // namespace kxrestore::engine::jet_sql
