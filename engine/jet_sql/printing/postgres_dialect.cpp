#include "engine/jet_sql/printing/server_dialects.h"
#include "engine/jet_sql/reading/mask.h"

namespace kxrestore::engine::jet_sql {
namespace {

constexpr const char* kIcuCollation = " COLLATE \"und-x-icu\"";

// Accented letters and what they sort as, for servers without a suitable collation.
constexpr const char* kAccented = "àáâãäåçèéêëìíîïñòóôõöøùúûüýÿÀÁÂÃÄÅÇÈÉÊËÌÍÎÏÑÒÓÔÕÖØÙÚÛÜÝŸ";
constexpr const char* kPlain = "aaaaaaceeeeiiiinoooooouuuuyyaaaaaaceeeeiiiinoooooouuuuyy";

constexpr DialectWords kWords = {.functions = &FunctionMapping::postgres,
                                 .openQuote = '"',
                                 .closeQuote = '"',
                                 .trueText = "TRUE",
                                 .falseText = "FALSE",
                                 .integerType = "bigint",
                                 .realType = "double precision",
                                 .maxFlag = "bool_or($1)",
                                 .minFlag = "bool_and($1)",
                                 .anyOfGroup = "(array_agg($1))[1]",
                                 .unknownIsFlag = true};

// A regular expression.
constexpr std::string_view kSpecial = "\\^$.|?*+()[]{}-";
constexpr MaskSyntax kRegex = {.anyRun = ".*", .anyOne = ".", .literals = kSpecial, .members = kSpecial};

}  // namespace

PostgresDialect::PostgresDialect(Order order, bool collatesCase)
    : Dialect(kWords), m_order(order), m_collatesCase(collatesCase) {}

// A * at either end means that the match is not anchored there.
std::string PostgresDialect::Mask(std::string_view mask) const {
  std::vector<MaskElement> elements = ParseMask(mask);
  const bool openStart = !elements.empty() && elements.front().IsRun();
  const bool openEnd = !elements.empty() && elements.back().IsRun();
  if (openEnd) elements.pop_back();
  if (openStart && !elements.empty()) elements.erase(elements.begin());
  return (openStart ? "" : "^") + PrintMask(elements, kRegex) + (openEnd ? "" : "$");
}

PrintedSql PostgresDialect::Like(const PrintedSql& operand, const Expression& pattern,
                                 const PrintedSql& printed, bool negated) const {
  const PrintedSql text = "CAST(" + operand + " AS text)" + (m_collatesCase ? kIcuCollation : "");
  if (pattern.kind == ExpressionKind::kText || pattern.kind == ExpressionKind::kParameter) {
    const PrintedSql regex = pattern.kind == ExpressionKind::kText ? Text(Mask(pattern.text)) : printed;
    return text + (negated ? " !~* " : " ~* ") + regex;
  }
  // The mask is computed on the server, so only * and ? are translated.
  PrintedSql mask = "CAST(" + printed + " AS text)";
  for (const char* change : {"'\\', '\\\\'", "'%', '\\%'", "'_', '\\_'", "'*', '%'", "'?', '_'"}) {
    mask = "replace(" + mask + ", " + change + ")";
  }
  return text + (negated ? " NOT ILIKE " : " ILIKE ") + mask;
}

PrintedSql PostgresDialect::Lower(const PrintedSql& operand) const {
  return "lower(" + operand + (m_collatesCase ? kIcuCollation : "") + ")";
}

PrintedSql PostgresDialect::SortKey(const PrintedSql& column, ValueKind kind) const {
  if (kind != ValueKind::kText) return column;
  if (m_order == Order::kOwn) return Lower(column);
  if (m_order == Order::kCollation) return Lower(column) + kIcuCollation;
  return "translate(" + Lower(column) + ", '" + kAccented + "', '" + kPlain + "')";
}

PrintedSql PostgresDialect::GroupKey(const PrintedSql& column, ValueKind kind) const {
  return kind == ValueKind::kText ? Lower(column) : column;
}

}  // namespace kxrestore::engine::jet_sql
