#include "host/command_line/output.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <ostream>

#include "base/text.h"

namespace kxrestore::cli {

namespace {

constexpr std::size_t kFlushAt = 1 << 16;  // bytes

void AppendNumber(std::string& text, std::int64_t number) {
  char digits[24];
  text.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

void AppendEscape(std::string& json, unsigned unit) {
  constexpr char kDigits[] = "0123456789abcdef";
  json += "\\u";
  for (int shift = 12; shift >= 0; shift -= 4) json += kDigits[(unit >> shift) & 15];
}

// Length of the UTF-8 character at the start of the text, unpaired surrogates included; 0 for an invalid
// byte.
std::size_t CharacterLength(std::string_view text, char32_t& character) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned lead = byte(0);
  const std::size_t length = lead < 0x80       ? 1
                             : lead >> 5 == 6  ? 2
                             : lead >> 4 == 14 ? 3
                             : lead >> 3 == 30 ? 4
                                               : 0;
  if (length == 0 || text.size() < length) return 0;
  character = length == 1 ? lead : lead & (0x7Fu >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if (byte(i) >> 6 != 2) return 0;
    character = (character << 6) | (byte(i) & 0x3F);
  }
  constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  return character < kSmallest[length] || character > 0x10FFFF ? 0 : length;
}

// The text of a table cell. A line break in a file name must not start a row.
void AppendPlain(std::string& line, const Cell& cell) {
  if (const auto* text = std::get_if<std::string_view>(&cell)) {
    const auto start = static_cast<std::ptrdiff_t>(line.size());
    line += *text;
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
    std::replace_if(line.begin() + start, line.end(), isControl, '?');
  } else if (const auto* number = std::get_if<std::int64_t>(&cell)) {
    AppendNumber(line, *number);
  } else if (const auto* flag = std::get_if<bool>(&cell)) {
    if (*flag) line += '*';
  }
}

}  // namespace

RowWriter::RowWriter(std::ostream& out, bool json, std::vector<Column> columns)
    : m_out(out), m_json(json), m_columns(std::move(columns)) {}

RowWriter::~RowWriter() {
  Flush();
}

void RowWriter::Flush() {
  m_out << m_line << std::flush;
  m_line.clear();
}

void RowWriter::Row(const std::vector<Cell>& cells) {
  if (m_json) {
    JsonRow(cells);
  } else {
    if (!m_headed) Heading();
    TableRow(cells);
  }
  if (m_line.size() >= kFlushAt) Flush();
}

void RowWriter::Heading() {
  m_headed = true;
  std::vector<Cell> titles;
  for (const Column& column : m_columns) titles.emplace_back(std::string_view(column.title));
  TableRow(titles);
}

void RowWriter::TableRow(const std::vector<Cell>& cells) {
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const std::size_t start = m_line.size();
    AppendPlain(m_line, cells[i]);
    const bool last = i + 1 == cells.size(), toTheRight = m_columns[i].width < 0;
    if (last && !toTheRight) break;
    const auto width = static_cast<std::size_t>(std::abs(m_columns[i].width));
    const std::size_t characters = CharacterCount(std::string_view(m_line).substr(start));
    const std::size_t blanks = width > characters ? width - characters : 0;
    m_line.insert(toTheRight ? start : m_line.size(), blanks, ' ');
    if (!last) m_line += "  ";
  }
  m_line += '\n';
}

void RowWriter::JsonRow(const std::vector<Cell>& cells) {
  char before = '{';
  for (std::size_t i = 0; i < cells.size(); ++i) {
    m_line += before;
    before = ',';
    m_line.append("\"").append(m_columns[i].key).append("\":");
    if (const auto* text = std::get_if<std::string_view>(&cells[i])) {
      AppendJsonText(m_line, *text);
    } else if (const auto* number = std::get_if<std::int64_t>(&cells[i])) {
      AppendNumber(m_line, *number);
    } else if (const auto* flag = std::get_if<bool>(&cells[i])) {
      m_line += *flag ? "true" : "false";
    } else {
      m_line += "null";
    }
  }
  m_line += "}\n";
}

void AppendJsonText(std::string& json, std::string_view text) {
  json += '"';
  while (!text.empty()) {
    char32_t character = 0;
    const std::size_t length = CharacterLength(text, character);
    if (length == 0) {
      json += "\xEF\xBF\xBD";
    } else if (character == '"' || character == '\\') {
      json.append("\\").append(text.substr(0, 1));
    } else if (character < 0x20 || (character >= 0xD800 && character <= 0xDFFF)) {
      AppendEscape(json, character);
    } else {
      json.append(text.substr(0, length));
    }
    text.remove_prefix(length == 0 ? 1 : length);
  }
  json += '"';
}

std::string Grouped(std::int64_t number) {
  std::string text = std::to_string(number);
  const std::size_t first = number < 0 ? 1 : 0;
  for (std::size_t i = text.size(); i > first + 3;) text.insert(i -= 3, ",");
  return text;
}

}  // namespace kxrestore::cli
