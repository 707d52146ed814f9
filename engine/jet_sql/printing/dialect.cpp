#include "engine/jet_sql/printing/dialect.h"

namespace kxrestore::engine::jet_sql {

std::string Dialect::Text(std::string_view text) const {
  std::string quoted = "'";
  for (const char c : text) {
    if (c == '\'') quoted += '\'';
    quoted += c;
  }
  return quoted + "'";
}

std::string Dialect::Date(const DateTime& date) const {
  return "'" + ToText(date) + "'";
}

PrintedSql Dialect::EmptyIfNull(const PrintedSql& operand) const {
  return operand.Text().front() == '\'' ? operand : "coalesce(" + operand + ", '')";
}

PrintedSql Dialect::BooleanTest(const PrintedSql& operand, bool expected, ValueKind /*kind*/) const {
  return operand + (expected ? " <> 0" : " = 0");
}

PrintedSql Dialect::BooleanExtreme(const PrintedSql& operand, bool maximum) const {
  return (maximum ? "max(" : "min(") + operand + ")";
}

PrintedSql Dialect::Call(const Expression& call, const std::vector<PrintedSql>& arguments) const {
  for (const FunctionMapping& mapping : Functions()) {
    if (mapping.arguments != arguments.size() || mapping.function != call.function) continue;
    PrintedSql text;
    std::string_view rest = mapping.text;
    for (std::size_t sign; (sign = rest.find('$')) != rest.npos; rest.remove_prefix(sign + 2)) {
      text += rest.substr(0, sign);
      text += arguments[static_cast<std::size_t>(rest[sign + 1] - '1')];
    }
    text += rest;
    return text;
  }
  PrintedSql text = call.text + "(";
  for (std::size_t i = 0; i < arguments.size(); ++i) text += (i == 0 ? "" : ", ") + arguments[i];
  return text + ")";
}

}  // namespace kxrestore::engine::jet_sql
