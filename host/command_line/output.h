// Prints rows as a table for people, or as one JSON object a line for programs.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kxrestore::cli {

struct Column {
  const char* key;    // in JSON
  const char* title;  // above the table
  int width = 0;      // characters; negative: right-aligned; the last column has none
};

// Null, Boolean, number, text. A text is UTF-8.
using Cell = std::variant<std::monostate, bool, std::int64_t, std::string_view>;

class RowWriter {
 public:
  RowWriter(std::ostream& out, bool json, std::vector<Column> columns);
  ~RowWriter();
  RowWriter(const RowWriter&) = delete;
  RowWriter& operator=(const RowWriter&) = delete;

  // Prints a row: one cell for each column. The heading is printed before the first one.
  void Row(const std::vector<Cell>& cells);

 private:
  void Heading();
  void JsonRow(const std::vector<Cell>& cells);
  void TableRow(const std::vector<Cell>& cells);
  void Flush();

  std::ostream& m_out;
  const bool m_json;
  const std::vector<Column> m_columns;
  bool m_headed = false;
  std::string m_line;
};

// A text as a JSON string with its quotes. Invalid bytes become U+FFFD; an unpaired surrogate, which a file
// name may contain, is preserved.
void AppendJsonText(std::string& json, std::string_view text);

// 1,234,567
std::string Grouped(std::int64_t number);

}  // namespace kxrestore::cli
