// A statement as the catalog builds it: fixed text with values in it.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/value.h"

namespace kxrestore::engine {

// Statements with the same text share a prepared plan, whatever their values. Printed() is the complete
// statement, for the desktop engine. A plain text converts to a statement without values. Reuse an object to
// avoid allocations.
class Sql {
 public:
  static constexpr char kPlace = '\x01';  // the place of a value in the text

  Sql() = default;
  template <std::convertible_to<std::string_view> Text>
  Sql(const Text& text) : m_text(std::string_view(text)) {}

  void Clear();
  Sql& Add(std::string_view fixed);
  Sql& AddNumber(std::int64_t number);
  // Printed in apostrophes, with apostrophes in the text doubled.
  Sql& AddText(std::string_view text);
  // Printed in apostrophes, unchanged. With an apostrophe in it, it becomes part of the fixed text, which
  // then fails to parse.
  Sql& AddRawText(std::string_view text);

  const std::string& Text() const { return m_text; }
  const std::vector<Value>& Values() const { return m_values; }
  std::string Printed() const;

 private:
  std::string m_text;
  std::vector<Value> m_values;
};

// The text between two quotes, with the closing one doubled inside.
std::string Quoted(std::string_view text, char open, char close);

}  // namespace kxrestore::engine
