// SQL as it is printed, piece by piece, with the places of its parameters.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kxrestore::engine::jet_sql {

// Converts from plain SQL. A piece with parameters may be repeated or moved; each copy keeps its parameters.
class PrintedSql {
 public:
  PrintedSql(std::string text = {}) : m_text(std::move(text)) {}
  PrintedSql(std::string_view text) : m_text(text) {}
  PrintedSql(const char* text) : m_text(text) {}
  // `number`: of the value that is bound to it, from 1.
  static PrintedSql Parameter(std::int64_t number);

  PrintedSql& operator+=(const PrintedSql& other);
  friend PrintedSql operator+(PrintedSql left, const PrintedSql& right) {
    left += right;
    return left;
  }

  // With a ? for each parameter.
  const std::string& Text() const { return m_text; }
  // With $1, $2, ... in the order of the text instead.
  std::string TextWithNumbers() const;
  // The numbers of the values, in the order of the text.
  const std::vector<std::int64_t>& Parameters() const { return m_parameters; }

 private:
  std::string m_text;
  std::vector<std::int64_t> m_parameters;
  std::vector<std::size_t> m_places;  // of their marks in the text
};

// The words with the arguments in place of $1, $2, ...
PrintedSql Filled(std::string_view words, const PrintedSql* arguments);

}  // namespace kxrestore::engine::jet_sql
