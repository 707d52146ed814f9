#include <algorithm>

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

constexpr MaskSyntax kLike = {.anyRun = "%", .anyOne = "_", .literals = "%_\\", .members = {}};

// Whether SQLite's own LIKE can express it: it knows neither lists nor digit signs.
bool IsPlain(const std::vector<MaskElement>& mask) {
  return std::all_of(mask.begin(), mask.end(), [](const MaskElement& element) {
    return element.IsRun() || element.kind == MaskElement::Kind::kAnyOne ||
           (element.kind == MaskElement::Kind::kLiteral && element.character != 0);
  });
}

}  // namespace

std::string SqliteDialect::Identifier(std::string_view name) const {
  if (IsPlainName(name)) return std::string(name);
  if (name.find(']') == std::string_view::npos) return "[" + std::string(name) + "]";
  return Dialect::Identifier(name);
}

PrintedSql SqliteDialect::Like(const PrintedSql& operand, const Expression& pattern,
                               const PrintedSql& printed, bool negated) const {
  if (m_savedQuery && pattern.kind == ExpressionKind::kText) {
    const std::vector<MaskElement> mask = ParseMask(pattern.text);
    if (IsPlain(mask)) {
      const std::string plain = PrintMask(mask, kLike);
      const char* const escape = plain.find('\\') == std::string::npos ? "" : " ESCAPE '\\'";
      return operand + (negated ? " NOT LIKE " : " LIKE ") + Text(plain) + escape;
    }
  }
  return std::string(negated ? "NOT " : "") + kLikeFunction + "(" + operand + ", " + printed + ")";
}

PrintedSql SqliteDialect::SortKey(const PrintedSql& column, ValueKind /*kind*/) const {
  return m_savedQuery ? column : column + " COLLATE " + kCollation;
}

// NOCASE folds ASCII only, but every SQLite has it.
PrintedSql SqliteDialect::GroupKey(const PrintedSql& column, ValueKind /*kind*/) const {
  return m_savedQuery ? column + " COLLATE NOCASE" : kFoldFunction + ("(" + column + ")");
}

}  // namespace kxrestore::engine::jet_sql
