#include "base/text.h"
#include "engine/jet_sql/printing/server_dialects.h"
#include "engine/jet_sql/reading/mask.h"

namespace kxrestore::engine::jet_sql {
namespace {

constexpr const char* kIcuCollation = " COLLATE \"und-x-icu\"";

// Accented letters and what they sort as, for servers without a suitable collation.
constexpr const char* kAccented = "àáâãäåçèéêëìíîïñòóôõöøùúûüýÿÀÁÂÃÄÅÇÈÉÊËÌÍÎÏÑÒÓÔÕÖØÙÚÛÜÝŸ";
constexpr const char* kPlain = "aaaaaaceeeeiiiinoooooouuuuyyaaaaaaceeeeiiiinoooooouuuuyy";

void AppendCharacterOf(std::string& regex, char32_t character) {
  constexpr std::string_view kSigns = "\\^$.|?*+()[]{}-";
  if (character < 0x80 && kSigns.find(static_cast<char>(character)) != std::string_view::npos) regex += '\\';
  AppendCharacter(regex, character);
}

void AppendElement(std::string& regex, const MaskElement& element) {
  switch (element.kind) {
    case MaskElement::Kind::kAnyRun:
      regex += ".*";
      return;
    case MaskElement::Kind::kAnyOne:
      regex += '.';
      return;
    case MaskElement::Kind::kDigit:
      regex += "[0-9]";
      return;
    case MaskElement::Kind::kLiteral:
      AppendCharacterOf(regex, element.character);
      return;
    case MaskElement::Kind::kList:
      break;
  }
  regex += element.negated ? "[^" : "[";
  for (const auto& [first, last] : element.ranges) {
    AppendCharacterOf(regex, first);
    if (last == first) continue;
    regex += '-';
    AppendCharacterOf(regex, last);
  }
  regex += ']';
}

}  // namespace

PrintedSql PostgresDialect::BooleanTest(const PrintedSql& operand, bool expected, ValueKind kind) const {
  if (kind == ValueKind::kNumber) return operand + (expected ? " <> 0" : " = 0");
  return operand + (expected ? " = TRUE" : " = FALSE");
}

PrintedSql PostgresDialect::BooleanExtreme(const PrintedSql& operand, bool maximum) const {
  return (maximum ? "bool_or(" : "bool_and(") + operand + ")";
}

// A mask becomes a regular expression.
std::string PostgresDialect::Mask(std::string_view mask) const {
  const std::vector<MaskElement> elements = ParseMask(mask);
  // A * at either end means that the match is not anchored there.
  const bool openStart = !elements.empty() && elements.front().IsRun();
  const bool openEnd = !elements.empty() && elements.back().IsRun();
  std::string regex = openStart ? "" : "^";
  for (const MaskElement& element : elements) {
    const bool atEnd = &element == &elements.front() || &element == &elements.back();
    if (!atEnd || !element.IsRun()) AppendElement(regex, element);
  }
  if (!openEnd) regex += '$';
  return regex;
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

PrintedSql PostgresDialect::Divide(const PrintedSql& left, const PrintedSql& right, bool whole) const {
  if (whole) return "CAST(" + left + " AS bigint) / CAST(" + right + " AS bigint)";
  return "CAST(" + left + " AS double precision) / " + right;
}

PrintedSql PostgresDialect::First(const PrintedSql& operand, ValueKind kind) const {
  if (kind == ValueKind::kBoolean) return "bool_or(" + operand + ")";
  if (kind == ValueKind::kUnknown) return "(array_agg(" + operand + "))[1]";
  return "min(" + operand + ")";
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

std::span<const FunctionMapping> PostgresDialect::Functions() const {
  static constexpr FunctionMapping kMappings[] = {
      {Function::kUCase, 1, "upper($1)"},
      {Function::kLCase, 1, "lower($1)"},
      {Function::kLen, 1, "length($1)"},
      {Function::kLeft, 2, "left($1, $2)"},
      {Function::kRight, 2, "right($1, $2)"},
      {Function::kMid, 2, "substr($1, $2)"},
      {Function::kMid, 3, "substr($1, $2, $3)"},
      {Function::kInStrRev, 2,
       "CASE WHEN strpos($1, $2) = 0 THEN 0 ELSE length($1) - length($2) - strpos(reverse($1), reverse($2)) "
       "+ 2 END"},
      {Function::kNz, 1, "coalesce($1, '')"},
      {Function::kNz, 2, "coalesce($1, $2)"},
      {Function::kInt, 1, "floor($1)"},
      {Function::kCLng, 1, "CAST($1 AS bigint)"},
      {Function::kCStr, 1, "CAST($1 AS text)"},
      {Function::kNow, 0, "localtimestamp(0)"},
  };
  return kMappings;
}

}  // namespace kxrestore::engine::jet_sql
