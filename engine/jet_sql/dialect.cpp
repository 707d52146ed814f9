#include "engine/jet_sql/dialect.h"

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

std::string Dialect::BooleanTest(const std::string& operand, bool expected) const {
  return operand + (expected ? " <> 0" : " = 0");
}

}  // namespace kxrestore::engine::jet_sql
