#include "engine/jet_sql/printing/printed_sql.h"

namespace kxrestore::engine::jet_sql {

PrintedSql PrintedSql::Parameter(std::int64_t number) {
  PrintedSql sql("?");
  sql.m_parameters.push_back(number);
  sql.m_places.push_back(0);
  return sql;
}

PrintedSql& PrintedSql::operator+=(const PrintedSql& other) {
  for (const std::size_t place : other.m_places) m_places.push_back(m_text.size() + place);
  m_parameters.insert(m_parameters.end(), other.m_parameters.begin(), other.m_parameters.end());
  m_text += other.m_text;
  return *this;
}

std::string PrintedSql::TextWithNumbers() const {
  std::string text;
  std::size_t copied = 0;
  for (std::size_t i = 0; i < m_places.size(); ++i) {
    text.append(m_text, copied, m_places[i] - copied).append("$").append(std::to_string(i + 1));
    copied = m_places[i] + 1;
  }
  return text.append(m_text, copied);
}

PrintedSql Filled(std::string_view words, const PrintedSql* arguments) {
  PrintedSql text;
  for (std::size_t sign; (sign = words.find('$')) != std::string_view::npos; words.remove_prefix(sign + 2)) {
    text += words.substr(0, sign);
    text += arguments[words[sign + 1] - '1'];
  }
  return text + words;
}

}  // namespace kxrestore::engine::jet_sql
