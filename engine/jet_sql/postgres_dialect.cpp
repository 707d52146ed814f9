#include "engine/jet_sql/lexer.h"
#include "engine/jet_sql/server_dialects.h"

namespace kxrestore::engine::jet_sql {
namespace {

constexpr const char* kIcuCollation = " COLLATE \"und-x-icu\"";

// Letters that stand beside others where nothing of the server's says so.
constexpr const char* kAccented = "àáâãäåçèéêëìíîïñòóôõöøùúûüýÿÀÁÂÃÄÅÇÈÉÊËÌÍÎÏÑÒÓÔÕÖØÙÚÛÜÝŸ";
constexpr const char* kPlain = "aaaaaaceeeeiiiinoooooouuuuyyaaaaaaceeeeiiiinoooooouuuuyy";

void AppendLiteral(std::string& regex, char c) {
  if (static_cast<unsigned char>(c) < 0x80 && !IsWordCharacter(c)) regex += '\\';
  regex += c;
}

// A mask's list, [a-z] or [!a-z]; `end` is its closing bracket. Nothing can be matched by an empty one.
void AppendList(std::string& regex, std::string_view list) {
  const bool negated = !list.empty() && list.front() == '!';
  if (negated) list.remove_prefix(1);
  if (list.empty()) {
    regex += negated ? "." : "(?!)";
    return;
  }
  regex += negated ? "[^" : "[";
  for (std::size_t i = 0; i < list.size(); ++i) {
    const bool range = list[i] == '-' && i > 0 && i + 1 < list.size();
    if (range) {
      regex += '-';
    } else {
      if (static_cast<unsigned char>(list[i]) < 0x80 && !IsWordCharacter(list[i])) regex += '\\';
      regex += list[i];
    }
  }
  regex += ']';
}

}  // namespace

std::string PostgresDialect::BooleanTest(const std::string& operand, bool expected, ValueKind kind) const {
  if (kind == ValueKind::kNumber) return operand + (expected ? " <> 0" : " = 0");
  return operand + (expected ? " = TRUE" : " = FALSE");
}

std::string PostgresDialect::BooleanExtreme(const std::string& operand, bool maximum) const {
  return (maximum ? "bool_or(" : "bool_and(") + operand + ")";
}

// Masks are regular expressions there: they can say all that a mask can.
std::string PostgresDialect::Mask(std::string_view mask) const {
  std::string regex;
  const bool openStart = mask.starts_with('*'), openEnd = mask.size() > 1 && mask.ends_with('*');
  if (openStart) mask.remove_prefix(1);
  if (openEnd) mask.remove_suffix(1);
  if (!openStart) regex += '^';
  for (std::size_t i = 0; i < mask.size(); ++i) {
    const std::size_t close = mask[i] == '[' ? mask.find(']', i + 1) : std::string_view::npos;
    if (close != std::string_view::npos) {
      AppendList(regex, mask.substr(i + 1, close - i - 1));
      i = close;
    } else if (mask[i] == '*') {
      regex += ".*";
    } else if (mask[i] == '?') {
      regex += '.';
    } else if (mask[i] == '#') {
      regex += "[0-9]";
    } else {
      AppendLiteral(regex, mask[i]);
    }
  }
  if (!openEnd && !(openStart && mask.empty())) regex += '$';
  return regex;
}

std::string PostgresDialect::Like(const std::string& operand, const Expression& pattern,
                                  const std::string& printed, bool negated) const {
  const std::string text = "CAST(" + operand + " AS text)" + (m_collatesCase ? kIcuCollation : "");
  if (pattern.kind == ExpressionKind::kText || pattern.kind == ExpressionKind::kParameter) {
    const std::string regex = pattern.kind == ExpressionKind::kText ? Text(Mask(pattern.text)) : printed;
    return text + (negated ? " !~* " : " ~* ") + regex;
  }
  // A mask that the server computes: the signs for any text and any character.
  std::string mask = "CAST(" + printed + " AS text)";
  for (const char* change : {"'\\', '\\\\'", "'%', '\\%'", "'_', '\\_'", "'*', '%'", "'?', '_'"}) {
    mask = "replace(" + mask + ", " + change + ")";
  }
  return text + (negated ? " NOT ILIKE " : " ILIKE ") + mask;
}

std::string PostgresDialect::Divide(const std::string& left, const std::string& right, bool whole) const {
  if (whole) return "CAST(" + left + " AS bigint) / CAST(" + right + " AS bigint)";
  return "CAST(" + left + " AS double precision) / " + right;
}

std::string PostgresDialect::First(const std::string& operand, ValueKind kind) const {
  if (kind == ValueKind::kBoolean) return "bool_or(" + operand + ")";
  if (kind == ValueKind::kUnknown) return "(array_agg(" + operand + "))[1]";
  return "min(" + operand + ")";
}

std::string PostgresDialect::Lower(const std::string& operand) const {
  return "lower(" + operand + (m_collatesCase ? kIcuCollation : "") + ")";
}

std::string PostgresDialect::SortKey(const std::string& column, ValueKind kind) const {
  if (kind != ValueKind::kText) return column;
  if (m_order == Order::kOwn) return Lower(column);
  if (m_order == Order::kCollation) return Lower(column) + kIcuCollation;
  return "translate(" + Lower(column) + ", '" + kAccented + "', '" + kPlain + "')";
}

std::string PostgresDialect::GroupKey(const std::string& column, ValueKind kind) const {
  return kind == ValueKind::kText ? Lower(column) : column;
}

std::span<const FunctionMapping> PostgresDialect::Functions() const {
  static constexpr FunctionMapping kMappings[] = {
      {"UCASE", 1, "upper($1)"},
      {"LCASE", 1, "lower($1)"},
      {"LEN", 1, "length($1)"},
      {"LEFT", 2, "left($1, $2)"},
      {"RIGHT", 2, "right($1, $2)"},
      {"MID", 2, "substr($1, $2)"},
      {"MID", 3, "substr($1, $2, $3)"},
      {"INSTRREV", 2,
       "CASE WHEN strpos($1, $2) = 0 THEN 0 ELSE length($1) - length($2) - strpos(reverse($1), reverse($2)) "
       "+ 2 END"},
      {"NZ", 1, "coalesce($1, '')"},
      {"NZ", 2, "coalesce($1, $2)"},
      {"INT", 1, "floor($1)"},
      {"CLNG", 1, "CAST($1 AS bigint)"},
      {"CSTR", 1, "CAST($1 AS text)"},
      {"NOW", 0, "localtimestamp(0)"},
  };
  return kMappings;
}

}  // namespace kxrestore::engine::jet_sql
