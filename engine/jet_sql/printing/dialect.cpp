#include "engine/jet_sql/printing/dialect.h"

#include "engine/sql.h"

namespace kxrestore::engine::jet_sql {
namespace {

// SQL Server's len does not count blanks at the end.
constexpr FunctionMapping kMappings[] = {
    {Function::kUCase, 1, "upper($1)", "upper($1)", "upper($1)"},
    {Function::kLCase, 1, "lower($1)", "lower($1)", "lower($1)"},
    {Function::kLen, 1, "length($1)", "length($1)", "(len($1 + 'x') - 1)"},
    {Function::kLeft, 2, "substr($1, 1, $2)", "left($1, $2)", "left($1, $2)"},
    {Function::kRight, 2, "substr($1, -($2), $2)", "right($1, $2)", "right($1, $2)"},
    {Function::kMid, 2, "substr($1, $2)", "substr($1, $2)", "substring($1, $2, len($1 + 'x'))"},
    {Function::kMid, 3, "substr($1, $2, $3)", "substr($1, $2, $3)", "substring($1, $2, $3)"},
    {Function::kInStrRev, 2, "kx_instrrev($1, $2)",
     "CASE WHEN strpos($1, $2) = 0 THEN 0 ELSE length($1) - length($2) - strpos(reverse($1), reverse($2)) "
     "+ 2 END",
     "CASE WHEN charindex($2, $1) = 0 THEN 0 ELSE len($1 + 'x') - charindex(reverse($2), reverse($1)) - "
     "len($2 + 'x') + 2 END"},
    {Function::kNz, 1, "coalesce($1, '')", "coalesce($1, '')", "coalesce($1, '')"},
    {Function::kNz, 2, "coalesce($1, $2)", "coalesce($1, $2)", "coalesce($1, $2)"},
    {Function::kInt, 1, "(CAST($1 AS INTEGER) - ($1 < CAST($1 AS INTEGER)))", "floor($1)", "floor($1)"},
    {Function::kCLng, 1, "CAST(round($1) AS INTEGER)", "CAST($1 AS bigint)", "CAST(round($1, 0) AS bigint)"},
    {Function::kCStr, 1, "CAST($1 AS TEXT)", "CAST($1 AS text)", "CAST($1 AS nvarchar(max))"},
    {Function::kNow, 0, "datetime('now', 'localtime')", "localtimestamp(0)", "getdate()"},
};

}  // namespace

std::string Dialect::Identifier(std::string_view name) const {
  return Quoted(name, m_words.openQuote, m_words.closeQuote);
}

std::string Dialect::Text(std::string_view text) const {
  return Quoted(text, '\'', '\'');
}

std::string Dialect::Date(const DateTime& date) const {
  std::string text = ToText(date);
  text[text.find(' ')] = m_words.dateSeparator;
  return "'" + text + "'";
}

std::string Dialect::Collation(std::string_view name) const {
  return m_words.quotesCollations ? Identifier(name) : std::string(name);
}

PrintedSql Dialect::BooleanTest(const PrintedSql& operand, bool expected, ValueKind kind) const {
  if (kind == ValueKind::kBoolean || (m_words.unknownIsFlag && kind != ValueKind::kNumber)) {
    return operand + " = " + Boolean(expected);
  }
  return operand + (expected ? " <> 0" : " = 0");
}

PrintedSql Dialect::BooleanExtreme(const PrintedSql& operand, bool maximum) const {
  return Filled(maximum ? m_words.maxFlag : m_words.minFlag, &operand);
}

PrintedSql Dialect::EmptyIfNull(const PrintedSql& operand) const {
  const bool isLiteral = operand.Text().starts_with('\'') || operand.Text().starts_with("N'");
  return isLiteral ? operand : Filled(m_words.emptyIfNull, &operand);
}

PrintedSql Dialect::Divide(const PrintedSql& left, const PrintedSql& right, bool whole) const {
  const PrintedSql type = whole ? m_words.integerType : m_words.realType;
  const PrintedSql dividend = "CAST(" + left + " AS " + type + ") / ";
  return dividend + (whole ? "CAST(" + right + " AS " + type + ")" : right);
}

PrintedSql Dialect::First(const PrintedSql& operand, ValueKind kind) const {
  if (!m_words.firstIsAggregate) return operand;
  if (kind == ValueKind::kBoolean) return BooleanExtreme(operand, true);
  return kind == ValueKind::kUnknown ? Filled(m_words.anyOfGroup, &operand) : "min(" + operand + ")";
}

PrintedSql Dialect::Call(const Expression& call, const std::vector<PrintedSql>& arguments) const {
  for (const FunctionMapping& mapping : kMappings) {
    if (m_words.functions == nullptr) break;
    if (mapping.arguments != arguments.size() || mapping.function != call.function) continue;
    return Filled(mapping.*m_words.functions, arguments.data());
  }
  PrintedSql text = call.text + "(";
  for (std::size_t i = 0; i < arguments.size(); ++i) text += (i == 0 ? "" : ", ") + arguments[i];
  return text + ")";
}

}  // namespace kxrestore::engine::jet_sql
