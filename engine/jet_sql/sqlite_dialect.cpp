#include <algorithm>
#include <iterator>
#include <optional>

#include "engine/jet_sql/dialect.h"
#include "engine/jet_sql/lexer.h"

namespace kxrestore::engine::jet_sql {
namespace {

// SQLite's keywords: names that want brackets.
constexpr std::string_view kKeywords[] = {"ABORT",
                                          "ACTION",
                                          "ADD",
                                          "AFTER",
                                          "ALL",
                                          "ALTER",
                                          "ALWAYS",
                                          "ANALYZE",
                                          "AND",
                                          "AS",
                                          "ASC",
                                          "ATTACH",
                                          "AUTOINCREMENT",
                                          "BEFORE",
                                          "BEGIN",
                                          "BETWEEN",
                                          "BY",
                                          "CASCADE",
                                          "CASE",
                                          "CAST",
                                          "CHECK",
                                          "COLLATE",
                                          "COLUMN",
                                          "COMMIT",
                                          "CONFLICT",
                                          "CONSTRAINT",
                                          "CREATE",
                                          "CROSS",
                                          "CURRENT",
                                          "CURRENT_DATE",
                                          "CURRENT_TIME",
                                          "CURRENT_TIMESTAMP",
                                          "DATABASE",
                                          "DEFAULT",
                                          "DEFERRABLE",
                                          "DEFERRED",
                                          "DELETE",
                                          "DESC",
                                          "DETACH",
                                          "DISTINCT",
                                          "DO",
                                          "DROP",
                                          "EACH",
                                          "ELSE",
                                          "END",
                                          "ESCAPE",
                                          "EXCEPT",
                                          "EXCLUDE",
                                          "EXCLUSIVE",
                                          "EXISTS",
                                          "EXPLAIN",
                                          "FAIL",
                                          "FILTER",
                                          "FIRST",
                                          "FOLLOWING",
                                          "FOR",
                                          "FOREIGN",
                                          "FROM",
                                          "FULL",
                                          "GENERATED",
                                          "GLOB",
                                          "GROUP",
                                          "GROUPS",
                                          "HAVING",
                                          "IF",
                                          "IGNORE",
                                          "IMMEDIATE",
                                          "IN",
                                          "INDEX",
                                          "INDEXED",
                                          "INITIALLY",
                                          "INNER",
                                          "INSERT",
                                          "INSTEAD",
                                          "INTERSECT",
                                          "INTO",
                                          "IS",
                                          "ISNULL",
                                          "JOIN",
                                          "KEY",
                                          "LAST",
                                          "LEFT",
                                          "LIKE",
                                          "LIMIT",
                                          "MATCH",
                                          "MATERIALIZED",
                                          "NATURAL",
                                          "NO",
                                          "NOT",
                                          "NOTHING",
                                          "NOTNULL",
                                          "NULL",
                                          "NULLS",
                                          "OF",
                                          "OFFSET",
                                          "ON",
                                          "OR",
                                          "ORDER",
                                          "OTHERS",
                                          "OUTER",
                                          "OVER",
                                          "PARTITION",
                                          "PLAN",
                                          "PRAGMA",
                                          "PRECEDING",
                                          "PRIMARY",
                                          "QUERY",
                                          "RAISE",
                                          "RANGE",
                                          "RECURSIVE",
                                          "REFERENCES",
                                          "REGEXP",
                                          "REINDEX",
                                          "RELEASE",
                                          "RENAME",
                                          "REPLACE",
                                          "RESTRICT",
                                          "RETURNING",
                                          "RIGHT",
                                          "ROLLBACK",
                                          "ROW",
                                          "ROWS",
                                          "SAVEPOINT",
                                          "SELECT",
                                          "SET",
                                          "TABLE",
                                          "TEMP",
                                          "TEMPORARY",
                                          "THEN",
                                          "TIES",
                                          "TO",
                                          "TRANSACTION",
                                          "TRIGGER",
                                          "UNBOUNDED",
                                          "UNION",
                                          "UNIQUE",
                                          "UPDATE",
                                          "USING",
                                          "VACUUM",
                                          "VALUES",
                                          "VIEW",
                                          "VIRTUAL",
                                          "WHEN",
                                          "WHERE",
                                          "WINDOW",
                                          "WITH",
                                          "WITHOUT",
                                          "TRUE",
                                          "FALSE"};

bool IsPlainName(std::string_view name) {
  if (name.empty() || !IsWordStart(name.front())) return false;
  if (!std::all_of(name.begin(), name.end(), IsWordCharacter)) return false;
  return std::none_of(std::begin(kKeywords), std::end(kKeywords),
                      [name](std::string_view keyword) { return IsKeyword(name, keyword); });
}

// The same mask for SQLite's own LIKE; nothing when it holds a list or a digit sign.
std::optional<std::string> PlainLikePattern(std::string_view pattern, bool& escaped) {
  std::string plain;
  for (const char c : pattern) {
    switch (c) {
      case '*':
        plain += '%';
        break;
      case '?':
        plain += '_';
        break;
      case '#':
      case '[':
      case '\0':
        return std::nullopt;
      case '%':
      case '_':
      case '\\':
        escaped = true;
        plain += '\\';
        [[fallthrough]];
      default:
        plain += c;
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

std::string SqliteDialect::Like(const std::string& operand, const Expression& pattern,
                                const std::string& printed, bool negated) const {
  if (m_savedQuery && pattern.kind == ExpressionKind::kText) {
    bool escaped = false;
    if (const auto plain = PlainLikePattern(pattern.text, escaped)) {
      return operand + (negated ? " NOT LIKE " : " LIKE ") + Text(*plain) + (escaped ? " ESCAPE '\\'" : "");
    }
  }
  return std::string(negated ? "NOT " : "") + kLikeFunction + "(" + operand + ", " + printed + ")";
}

std::string SqliteDialect::Divide(const std::string& left, const std::string& right, bool whole) const {
  if (whole) return "CAST(" + left + " AS INTEGER) / CAST(" + right + " AS INTEGER)";
  return "CAST(" + left + " AS REAL) / " + right;
}

std::span<const FunctionMapping> SqliteDialect::Functions() const {
  static constexpr FunctionMapping kMappings[] = {
      {"UCASE", 1, "upper($1)"},
      {"LCASE", 1, "lower($1)"},
      {"LEN", 1, "length($1)"},
      {"LEFT", 2, "substr($1, 1, $2)"},
      {"RIGHT", 2, "substr($1, -($2))"},
      {"MID", 2, "substr($1, $2)"},
      {"MID", 3, "substr($1, $2, $3)"},
      {"INSTRREV", 2, "kx_instrrev($1, $2)"},
      {"NZ", 1, "coalesce($1, '')"},
      {"NZ", 2, "coalesce($1, $2)"},
      {"INT", 1, "CAST($1 AS INTEGER)"},
      {"CLNG", 1, "CAST($1 AS INTEGER)"},
      {"CSTR", 1, "CAST($1 AS TEXT)"},
      {"NOW", 0, "datetime('now', 'localtime')"},
  };
  return kMappings;
}

std::string SqliteDialect::SortKey(const std::string& column, ValueKind /*kind*/) const {
  return m_savedQuery ? column : column + " COLLATE " + kCollation;
}

}  // namespace kxrestore::engine::jet_sql
