#include <algorithm>
#include <optional>

#include "base/text.h"
#include "engine/jet_sql/printing/dialect.h"
#include "engine/jet_sql/reading/lexer.h"
#include "engine/jet_sql/reading/mask.h"

namespace kxrestore::engine::jet_sql {
namespace {

// SQLite's keywords, separated by blanks. Names among them need brackets.
constexpr std::string_view kKeywords =
    " abort action add after all alter always analyze and as asc attach autoincrement before begin "
    "between by cascade case cast check collate column commit conflict constraint create cross current "
    "current_date current_time current_timestamp database default deferrable deferred delete desc "
    "detach distinct do drop each else end escape except exclude exclusive exists explain fail filter "
    "first following for foreign from full generated glob group groups having if ignore immediate in "
    "index indexed initially inner insert instead intersect into is isnull join key last left like "
    "limit match materialized natural no not nothing notnull null nulls of offset on or order others "
    "outer over partition plan pragma preceding primary query raise range recursive references regexp "
    "reindex release rename replace restrict returning right rollback row rows savepoint select set "
    "table temp temporary then ties to transaction trigger unbounded union unique update using vacuum "
    "values view virtual when where window with without true false ";

bool IsPlainName(std::string_view name) {
  if (name.empty() || !IsWordStart(name.front())) return false;
  if (!std::all_of(name.begin(), name.end(), IsWordCharacter)) return false;
  return kKeywords.find(" " + FoldCase(name) + " ") == std::string_view::npos;
}

// Translates a mask for SQLite's own LIKE; nothing if it uses lists or digit signs.
std::optional<std::string> PlainLikePattern(std::string_view mask, bool& escaped) {
  std::string plain;
  for (const MaskElement& element : ParseMask(mask)) {
    if (element.IsRun()) {
      plain += '%';
    } else if (element.kind == MaskElement::Kind::kAnyOne) {
      plain += '_';
    } else if (element.kind != MaskElement::Kind::kLiteral || element.character == 0) {
      return std::nullopt;
    } else {
      if (element.character == '%' || element.character == '_' || element.character == '\\') {
        escaped = true;
        plain += '\\';
      }
      AppendCharacter(plain, element.character);
    }
  }
  return plain;
}

}  // namespace

std::string SqliteDialect::Identifier(std::string_view name) const {
  if (IsPlainName(name)) return std::string(name);
  if (name.find(']') == std::string_view::npos) return "[" + std::string(name) + "]";
  std::string quoted = "\"";
  for (const char c : name) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + "\"";
}

PrintedSql SqliteDialect::Like(const PrintedSql& operand, const Expression& pattern,
                               const PrintedSql& printed, bool negated) const {
  if (m_savedQuery && pattern.kind == ExpressionKind::kText) {
    bool escaped = false;
    if (const auto plain = PlainLikePattern(pattern.text, escaped)) {
      return operand + (negated ? " NOT LIKE " : " LIKE ") + Text(*plain) + (escaped ? " ESCAPE '\\'" : "");
    }
  }
  return std::string(negated ? "NOT " : "") + kLikeFunction + "(" + operand + ", " + printed + ")";
}

PrintedSql SqliteDialect::Divide(const PrintedSql& left, const PrintedSql& right, bool whole) const {
  if (whole) return "CAST(" + left + " AS INTEGER) / CAST(" + right + " AS INTEGER)";
  return "CAST(" + left + " AS REAL) / " + right;
}

std::span<const FunctionMapping> SqliteDialect::Functions() const {
  static constexpr FunctionMapping kMappings[] = {
      {Function::kUCase, 1, "upper($1)"},
      {Function::kLCase, 1, "lower($1)"},
      {Function::kLen, 1, "length($1)"},
      {Function::kLeft, 2, "substr($1, 1, $2)"},
      {Function::kRight, 2, "substr($1, -($2), $2)"},
      {Function::kMid, 2, "substr($1, $2)"},
      {Function::kMid, 3, "substr($1, $2, $3)"},
      {Function::kInStrRev, 2, "kx_instrrev($1, $2)"},
      {Function::kNz, 1, "coalesce($1, '')"},
      {Function::kNz, 2, "coalesce($1, $2)"},
      {Function::kInt, 1, "(CAST($1 AS INTEGER) - ($1 < CAST($1 AS INTEGER)))"},
      {Function::kCLng, 1, "CAST(round($1) AS INTEGER)"},
      {Function::kCStr, 1, "CAST($1 AS TEXT)"},
      {Function::kNow, 0, "datetime('now', 'localtime')"},
  };
  return kMappings;
}

PrintedSql SqliteDialect::SortKey(const PrintedSql& column, ValueKind /*kind*/) const {
  return m_savedQuery ? column : column + " COLLATE " + kCollation;
}

// NOCASE folds ASCII only, but every SQLite has it.
PrintedSql SqliteDialect::GroupKey(const PrintedSql& column, ValueKind /*kind*/) const {
  return m_savedQuery ? column + " COLLATE NOCASE" : kFoldFunction + ("(" + column + ")");
}

}  // namespace kxrestore::engine::jet_sql
