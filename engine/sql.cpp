#include "engine/sql.h"

namespace kxrestore::engine {

void Sql::Clear() {
  m_text.clear();
  m_values.clear();
}

Sql& Sql::Add(std::string_view fixed) {
  m_text.append(fixed);
  return *this;
}

Sql& Sql::AddNumber(std::int64_t number) {
  m_text += kPlace;
  m_values.emplace_back(number);
  return *this;
}

Sql& Sql::AddText(std::string_view text) {
  m_text += kPlace;
  m_values.emplace_back(std::in_place_type<std::string>, text);
  return *this;
}

Sql& Sql::AddRawText(std::string_view text) {
  if (text.find('\'') == std::string_view::npos) return AddText(text);
  return Add("'").Add(text).Add("'");
}

std::string Sql::Printed() const {
  std::string printed;
  auto value = m_values.begin();
  for (const char c : m_text) {
    if (c != kPlace || value == m_values.end()) {
      printed += c;
      continue;
    }
    if (const auto* text = std::get_if<std::string>(&*value)) {
      printed += Quoted(*text, '\'', '\'');
    } else {
      printed += ToText(ViewOf(*value));
    }
    ++value;
  }
  return printed;
}

std::string Quoted(std::string_view text, char open, char close) {
  std::string quoted(1, open);
  for (const char c : text) quoted.append(c == close ? 2 : 1, c);
  return quoted + close;
}

}  // namespace kxrestore::engine
