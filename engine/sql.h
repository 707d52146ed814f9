// A statement as the catalog builds it: fixed text with values in it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/value.h"

namespace kxrestore::engine {

// Statements with the same text share a prepared plan, whatever their values. Printed() is the complete
// statement, for the desktop engine. Reuse an object to avoid allocations.
class Sql {
 public:
  static constexpr char kPlace = '\x01';  // the place of a value in the text

  Sql() = default;
  explicit Sql(std::string_view text) : m_text(text) {}

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

}  // namespace kxrestore::engine
