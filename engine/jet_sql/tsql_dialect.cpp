#include "engine/jet_sql/tsql_dialect.h"

#include <algorithm>
#include <utility>

#include "base/text.h"

namespace kxrestore::engine::jet_sql {
namespace {

constexpr const char* kEscape = " ESCAPE '\\'";

void AppendMember(std::string& list, char32_t character) {
  if (character == '^' || character == '-' || character == '[' || character == '\\') list += '\\';
  AppendCharacter(list, character);
}

// What stands between the brackets of [a-z] or [!a-z].
void AppendList(std::string& mask, std::string_view list) {
  if (list.empty()) return;  // it stands for nothing, so nothing is asked for
  mask += '[';
  if (list.front() == '!' && list.size() > 1) {
    mask += '^';
    list.remove_prefix(1);
  }
  for (std::size_t position = 0; position < list.size();) {
    char32_t first = NextCharacter(list, position);
    if (position + 1 >= list.size() || list[position] != '-') {
      AppendMember(mask, first);
      continue;
    }
    char32_t last = NextCharacter(list, ++position);
    if (FoldCase(last) < FoldCase(first)) std::swap(first, last);
    AppendMember(mask, first);
    mask += '-';
    AppendMember(mask, last);
  }
  mask += ']';
}

bool IsLiteral(std::string_view operand) {
  return operand.starts_with('\'') || operand.starts_with("N'");
}

}  // namespace

// ASCII is the same in every code page. A text marked as national makes the server convert a column that is
// not, which can cost the index.
std::string TsqlDialect::Text(std::string_view text) const {
  const bool national =
      std::any_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
  return (national ? "N" : "") + Dialect::Text(text);
}

// The one form that no language and no date order of the session reads in another way.
std::string TsqlDialect::Date(const DateTime& date) const {
  std::string text = ToText(date);
  text[text.find(' ')] = 'T';
  return "'" + text + "'";
}

// A bit is compared in the way that an index on it can answer.
std::string TsqlDialect::BooleanTest(const std::string& operand, bool expected, ValueKind kind) const {
  if (!expected) return operand + " = 0";
  return operand + (kind == ValueKind::kBoolean ? " = 1" : " <> 0");
}

// Of bits there is neither a smallest nor a greatest.
std::string TsqlDialect::BooleanExtreme(const std::string& operand, bool maximum) const {
  return std::string("CAST(") + (maximum ? "max" : "min") + "(CAST(" + operand + " AS tinyint)) AS bit)";
}

std::string TsqlDialect::First(const std::string& operand, ValueKind kind) const {
  return kind == ValueKind::kBoolean ? BooleanExtreme(operand, true) : "min(" + operand + ")";
}

std::string TsqlDialect::Mask(std::string_view mask) const {
  std::string result;
  for (std::size_t i = 0; i < mask.size(); ++i) {
    const std::size_t close = mask[i] == '[' ? mask.find(']', i + 1) : std::string_view::npos;
    if (close != std::string_view::npos) {
      AppendList(result, mask.substr(i + 1, close - i - 1));
      i = close;
      continue;
    }
    switch (mask[i]) {
      case '*':
        result += '%';
        break;
      case '?':
        result += '_';
        break;
      case '#':
        result += "[0-9]";
        break;
      case '%':
      case '_':
      case '[':
      case '\\':
        result += '\\';
        [[fallthrough]];
      default:
        result += mask[i];
    }
  }
  return result;
}

std::string TsqlDialect::IgnoringCase(const std::string& operand) const {
  return m_mindsCase ? "CAST(" + operand + " AS nvarchar(max)) COLLATE Latin1_General_CI_AS" : operand;
}

std::string TsqlDialect::Like(const std::string& operand, const Expression& pattern,
                              const std::string& printed, bool negated) const {
  std::string mask = printed;
  if (pattern.kind == ExpressionKind::kText) {
    mask = Text(Mask(pattern.text));
  } else if (pattern.kind != ExpressionKind::kParameter) {
    // A mask that the server computes.
    for (const char* change :
         {"'\\', '\\\\'", "'%', '\\%'", "'_', '\\_'", "'[!', '[^'", "'*', '%'", "'?', '_'", "'#', '[0-9]'"}) {
      mask = "replace(" + mask + ", " + change + ")";
    }
  }
  return IgnoringCase(operand) + (negated ? " NOT LIKE " : " LIKE ") + mask + kEscape;
}

std::string TsqlDialect::EmptyIfNull(const std::string& operand) const {
  return IsLiteral(operand) ? operand : "coalesce(CAST(" + operand + " AS nvarchar(max)), '')";
}

std::string TsqlDialect::Divide(const std::string& left, const std::string& right, bool whole) const {
  if (whole) return "CAST(" + left + " AS bigint) / CAST(" + right + " AS bigint)";
  return "CAST(" + left + " AS float) / " + right;
}

std::string TsqlDialect::SortKey(const std::string& column, ValueKind kind) const {
  return kind == ValueKind::kText ? IgnoringCase(column) : column;
}

// len does not count blanks at the end.
std::span<const FunctionMapping> TsqlDialect::Functions() const {
  static constexpr FunctionMapping kMappings[] = {
      {"UCASE", 1, "upper($1)"},
      {"LCASE", 1, "lower($1)"},
      {"LEN", 1, "(len($1 + 'x') - 1)"},
      {"LEFT", 2, "left($1, $2)"},
      {"RIGHT", 2, "right($1, $2)"},
      {"MID", 2, "substring($1, $2, len($1 + 'x'))"},
      {"MID", 3, "substring($1, $2, $3)"},
      {"NZ", 1, "coalesce($1, '')"},
      {"NZ", 2, "coalesce($1, $2)"},
      {"INT", 1, "floor($1)"},
      {"CLNG", 1, "CAST(round($1, 0) AS bigint)"},
      {"CSTR", 1, "CAST($1 AS nvarchar(max))"},
      {"NOW", 0, "getdate()"},
      {"INSTRREV", 2,
       "CASE WHEN charindex($2, $1) = 0 THEN 0 ELSE len($1 + 'x') - charindex(reverse($2), reverse($1)) - "
       "len($2 + 'x') + 2 END"},
  };
  return kMappings;
}

}  // namespace kxrestore::engine::jet_sql
