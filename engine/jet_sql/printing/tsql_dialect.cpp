#include "engine/jet_sql/printing/tsql_dialect.h"

#include <algorithm>

#include "base/text.h"
#include "engine/jet_sql/reading/mask.h"

namespace kxrestore::engine::jet_sql {
namespace {

constexpr const char* kEscape = " ESCAPE '\\'";

void AppendMember(std::string& list, char32_t character) {
  if (character == '^' || character == '-' || character == '[' || character == '\\') list += '\\';
  AppendCharacter(list, character);
}

void AppendElement(std::string& mask, const MaskElement& element) {
  switch (element.kind) {
    case MaskElement::Kind::kAnyRun:
      mask += '%';
      return;
    case MaskElement::Kind::kAnyOne:
      mask += '_';
      return;
    case MaskElement::Kind::kDigit:
      mask += "[0-9]";
      return;
    case MaskElement::Kind::kLiteral:
      if (element.character == '%' || element.character == '_' || element.character == '[' ||
          element.character == '\\') {
        mask += '\\';
      }
      AppendCharacter(mask, element.character);
      return;
    case MaskElement::Kind::kList:
      break;
  }
  mask += element.negated ? "[^" : "[";
  for (const auto& [first, last] : element.ranges) {
    AppendMember(mask, first);
    if (last == first) continue;
    mask += '-';
    AppendMember(mask, last);
  }
  mask += ']';
}

bool IsLiteral(std::string_view operand) {
  return operand.starts_with('\'') || operand.starts_with("N'");
}

}  // namespace

// Only texts beyond ASCII are marked as national: the mark makes the server convert a column that is not,
// which can cost the index.
std::string TsqlDialect::Text(std::string_view text) const {
  const bool national =
      std::any_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
  return (national ? "N" : "") + Dialect::Text(text);
}

// The only form that is read the same in every language and date order.
std::string TsqlDialect::Date(const DateTime& date) const {
  std::string text = ToText(date);
  text[text.find(' ')] = 'T';
  return "'" + text + "'";
}

// A bit is compared in a form that can use an index.
PrintedSql TsqlDialect::BooleanTest(const PrintedSql& operand, bool expected, ValueKind kind) const {
  if (!expected) return operand + " = 0";
  return operand + (kind == ValueKind::kBoolean ? " = 1" : " <> 0");
}

// The server has no Min and Max of bits.
PrintedSql TsqlDialect::BooleanExtreme(const PrintedSql& operand, bool maximum) const {
  return std::string("CAST(") + (maximum ? "max" : "min") + "(CAST(" + operand + " AS tinyint)) AS bit)";
}

PrintedSql TsqlDialect::First(const PrintedSql& operand, ValueKind kind) const {
  return kind == ValueKind::kBoolean ? BooleanExtreme(operand, true) : "min(" + operand + ")";
}

std::string TsqlDialect::Mask(std::string_view mask) const {
  std::string result;
  for (const MaskElement& element : ParseMask(mask)) AppendElement(result, element);
  return result;
}

PrintedSql TsqlDialect::IgnoringCase(const PrintedSql& operand) const {
  return m_mindsCase ? "CAST(" + operand + " AS nvarchar(max)) COLLATE Latin1_General_CI_AS" : operand;
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

PrintedSql TsqlDialect::EmptyIfNull(const PrintedSql& operand) const {
  return IsLiteral(operand.Text()) ? operand : "coalesce(CAST(" + operand + " AS nvarchar(max)), '')";
}

PrintedSql TsqlDialect::Divide(const PrintedSql& left, const PrintedSql& right, bool whole) const {
  if (whole) return "CAST(" + left + " AS bigint) / CAST(" + right + " AS bigint)";
  return "CAST(" + left + " AS float) / " + right;
}

PrintedSql TsqlDialect::SortKey(const PrintedSql& column, ValueKind kind) const {
  return kind == ValueKind::kText ? IgnoringCase(column) : column;
}

// len does not count blanks at the end.
std::span<const FunctionMapping> TsqlDialect::Functions() const {
  static constexpr FunctionMapping kMappings[] = {
      {Function::kUCase, 1, "upper($1)"},
      {Function::kLCase, 1, "lower($1)"},
      {Function::kLen, 1, "(len($1 + 'x') - 1)"},
      {Function::kLeft, 2, "left($1, $2)"},
      {Function::kRight, 2, "right($1, $2)"},
      {Function::kMid, 2, "substring($1, $2, len($1 + 'x'))"},
      {Function::kMid, 3, "substring($1, $2, $3)"},
      {Function::kNz, 1, "coalesce($1, '')"},
      {Function::kNz, 2, "coalesce($1, $2)"},
      {Function::kInt, 1, "floor($1)"},
      {Function::kCLng, 1, "CAST(round($1, 0) AS bigint)"},
      {Function::kCStr, 1, "CAST($1 AS nvarchar(max))"},
      {Function::kNow, 0, "getdate()"},
      {Function::kInStrRev, 2,
       "CASE WHEN charindex($2, $1) = 0 THEN 0 ELSE len($1 + 'x') - charindex(reverse($2), reverse($1)) - "
       "len($2 + 'x') + 2 END"},
  };
  return kMappings;
}

}  // namespace kxrestore::engine::jet_sql
