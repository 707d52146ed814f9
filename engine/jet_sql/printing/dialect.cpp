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

std::string Dialect::EmptyIfNull(const std::string& operand) const {
  return operand.front() == '\'' ? operand : "coalesce(" + operand + ", '')";
}

std::string Dialect::BooleanTest(const std::string& operand, bool expected, ValueKind /*kind*/) const {
  return operand + (expected ? " <> 0" : " = 0");
}

std::string Dialect::BooleanExtreme(const std::string& operand, bool maximum) const {
  return (maximum ? "max(" : "min(") + operand + ")";
}

std::string Dialect::Call(const Expression& call, const std::vector<std::string>& arguments) const {
  for (const FunctionMapping& mapping : Functions()) {
    if (mapping.arguments != arguments.size() || mapping.function != call.function) continue;
    std::string text;
    for (std::size_t i = 0; i < mapping.text.size(); ++i) {
      if (mapping.text[i] == '$') {
        text += arguments[static_cast<std::size_t>(mapping.text[++i] - '1')];
      } else {
        text += mapping.text[i];
      }
    }
    return text;
  }
  std::string text = call.text + "(";
  for (std::size_t i = 0; i < arguments.size(); ++i) text += (i == 0 ? "" : ", ") + arguments[i];
  return text + ")";
}

}  // namespace kxrestore::engine::jet_sql
