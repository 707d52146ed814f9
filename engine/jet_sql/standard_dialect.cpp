#include <vector>

#include "base/text.h"
#include "engine/error_numbers.h"
#include "engine/jet_sql/lexer.h"
#include "engine/jet_sql/server_dialects.h"

namespace kxrestore::engine::jet_sql {
namespace {

constexpr std::size_t kMaxMasks = 256;

[[noreturn]] void RaiseMask(std::string_view mask) {
  Raise(error_number::kOdbcFailed,
        "ODBC - call failed: the server has no masks like '" + std::string(mask) + "'.");
}

// One position of a mask: the texts of LIKE that may stand there.
using Choices = std::vector<std::string>;

std::string Escaped(char32_t character) {
  std::string text;
  if (character == '%' || character == '_' || character == '\\') text = "\\";
  AppendCharacter(text, character);
  return text;
}

Choices ListChoices(std::string_view mask, std::string_view list) {
  Choices choices;
  if (list.starts_with('!')) RaiseMask(mask);
  for (std::size_t position = 0; position < list.size();) {
    const char32_t first = NextCharacter(list, position);
    char32_t last = first;
    if (position + 1 < list.size() && list[position] == '-') last = NextCharacter(list, ++position);
    if (last < first || last - first >= kMaxMasks) RaiseMask(mask);
    for (char32_t character = first; character <= last; ++character) choices.push_back(Escaped(character));
  }
  if (choices.empty()) RaiseMask(mask);
  return choices;
}

// UPPER of many servers knows ASCII only; other letters are asked for as they stand, folded and not.
Choices LetterChoices(char32_t character) {
  Choices choices = {Escaped(character)};
  if (character < 0x80) return choices;
  const char32_t folded = FoldCase(character);
  if (folded != character) choices.push_back(Escaped(folded));
  for (const char32_t distance :
       {0x20, 0x01, 0x50}) {  // Latin-1, Greek and Cyrillic; Latin Extended; Cyrillic
    if (folded == character && character > distance && FoldCase(character - distance) == character) {
      choices.push_back(Escaped(character - distance));
    }
  }
  return choices;
}

std::vector<std::string> Masks(std::string_view mask) {
  std::vector<std::string> masks = {""};
  for (std::size_t position = 0; position < mask.size();) {
    const std::size_t start = position;
    const char32_t character = NextCharacter(mask, position);
    const std::size_t close = character == '[' ? mask.find(']', position) : std::string_view::npos;
    Choices choices;
    if (close != std::string_view::npos) {
      choices = ListChoices(mask, mask.substr(start + 1, close - start - 1));
      position = close + 1;
    } else if (character == '*' || character == '?') {
      choices = {character == '*' ? "%" : "_"};
    } else if (character == '#') {
      choices = {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9"};
    } else {
      choices = LetterChoices(character);
    }
    if (masks.size() * choices.size() > kMaxMasks) RaiseMask(mask);
    std::vector<std::string> longer;
    for (const std::string& begun : masks) {
      for (const std::string& choice : choices) longer.push_back(begun + choice);
    }
    masks = std::move(longer);
  }
  return masks;
}

}  // namespace

std::string StandardDialect::Like(const std::string& operand, const Expression& pattern,
                                  const std::string& printed, bool negated) const {
  const std::string text = "UPPER(" + operand + ") LIKE UPPER(";
  if (pattern.kind != ExpressionKind::kText) return (negated ? "NOT " : "") + text + printed + ")";
  std::string result;
  for (const std::string& mask : Masks(pattern.text)) {
    result += (result.empty() ? "" : " OR ") + text + Text(mask) + ") ESCAPE '\\'";
  }
  return (negated ? "NOT (" : "(") + result + ")";
}

std::string StandardDialect::Divide(const std::string& left, const std::string& right, bool whole) const {
  if (whole) return "CAST(" + left + " AS INTEGER) / CAST(" + right + " AS INTEGER)";
  return "CAST(" + left + " AS DOUBLE PRECISION) / " + right;
}

std::string StandardDialect::SortKey(const std::string& column, ValueKind kind) const {
  return kind == ValueKind::kText ? "UPPER(" + column + ")" : column;
}

std::string StandardDialect::GroupKey(const std::string& column, ValueKind kind) const {
  return SortKey(column, kind);
}

std::span<const FunctionMapping> StandardDialect::Functions() const {
  static constexpr FunctionMapping kMappings[] = {
      {"UCASE", 1, "UPPER($1)"},
      {"LCASE", 1, "LOWER($1)"},
      {"LEN", 1, "{fn LENGTH($1)}"},
      {"LEFT", 2, "{fn LEFT($1, $2)}"},
      {"RIGHT", 2, "{fn RIGHT($1, $2)}"},
      {"MID", 2, "{fn SUBSTRING($1, $2, {fn LENGTH($1)})}"},
      {"MID", 3, "{fn SUBSTRING($1, $2, $3)}"},
      {"NZ", 1, "COALESCE($1, '')"},
      {"NZ", 2, "COALESCE($1, $2)"},
      {"INT", 1, "{fn FLOOR($1)}"},
      {"CLNG", 1, "CAST({fn ROUND($1, 0)} AS INTEGER)"},
      {"CSTR", 1, "CAST($1 AS VARCHAR(4000))"},
      {"NOW", 0, "CURRENT_TIMESTAMP"},
  };
  return kMappings;
}

}  // namespace kxrestore::engine::jet_sql
