// Rows for people, as a table, or for programs, one JSON object a line.
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
  int width = 0;      // characters; negative for numbers, which stand on the right; the last column has none
};

// Null, Boolean, number, text. A text is UTF-8.
using Cell = std::variant<std::monostate, bool, std::int64_t, std::string_view>;

class RowWriter {
 public:
  RowWriter(std::ostream& out, bool json, std::vector<Column> columns);
  ~RowWriter();
  RowWriter(const RowWriter&) = delete;
  RowWriter& operator=(const RowWriter&) = delete;

  // As many cells as there are columns. The heading comes before the first row.
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

// A text as JSON wants it, with its quotes. What is no character becomes U+FFFD; half a surrogate pair, which
// a file name may hold, stays what it is.
void AppendJsonText(std::string& json, std::string_view text);

// 1,234,567
std::string Grouped(std::int64_t number);

}  // namespace kxrestore::cli
