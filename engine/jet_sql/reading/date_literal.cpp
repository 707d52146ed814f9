#include "engine/jet_sql/reading/date_literal.h"

#include "engine/jet_sql/reading/lexer.h"

namespace kxrestore::engine::jet_sql {
namespace {

class Reader {
 public:
  explicit Reader(std::string_view text) : m_text(text) {}

  void SkipBlanks() {
    while (!m_text.empty() && IsBlank(m_text.front())) m_text.remove_prefix(1);
  }
  bool AtEnd() const { return m_text.empty(); }
  bool Take(char c) {
    if (m_text.empty() || m_text.front() != c) return false;
    m_text.remove_prefix(1);
    return true;
  }
  bool TakeWord(std::string_view word) {
    if (!IsKeyword(m_text.substr(0, word.size()), word)) return false;
    m_text.remove_prefix(word.size());
    return true;
  }
  // Reads one to four digits and returns how many.
  int TakeNumber(int& number) {
    int digits = 0;
    number = 0;
    while (!m_text.empty() && IsDigit(m_text.front()) && digits < 4) {
      number = number * 10 + (m_text.front() - '0');
      m_text.remove_prefix(1);
      ++digits;
    }
    return digits;
  }

 private:
  std::string_view m_text;
};

bool ReadDay(Reader& reader, int first, int digits, DateTime& date) {
  int second = 0, third = 0;
  const char separator = digits > 2 || reader.Take('-') ? '-' : '/';
  if (digits > 2 || separator == '/') {
    if (!reader.Take('-') && !reader.Take('/')) return false;
  }
  if (reader.TakeNumber(second) == 0) return false;
  if (!reader.Take('-') && !reader.Take('/')) return false;
  const int lastDigits = reader.TakeNumber(third);
  if (lastDigits == 0) return false;
  int year = first, month = second, day = third;
  if (digits <= 2) {
    month = first;
    day = second;
    year = third;
    if (lastDigits <= 2) year += year < 30 ? 2000 : 1900;
  }
  if (!IsValidDate(year, month, day)) return false;
  date.year = static_cast<std::int16_t>(year);
  date.month = static_cast<std::int8_t>(month);
  date.day = static_cast<std::int8_t>(day);
  return true;
}

bool ReadTime(Reader& reader, int hour, DateTime& date) {
  int minute = 0, second = 0;
  if (reader.TakeNumber(minute) == 0) return false;
  if (reader.Take(':') && reader.TakeNumber(second) == 0) return false;
  reader.SkipBlanks();
  const bool afternoon = reader.TakeWord("PM");
  if (afternoon || reader.TakeWord("AM")) {
    if (hour < 1 || hour > 12) return false;
    hour = hour % 12 + (afternoon ? 12 : 0);
  }
  if (hour > 23 || minute > 59 || second > 59) return false;
  date.hour = static_cast<std::int8_t>(hour);
  date.minute = static_cast<std::int8_t>(minute);
  date.second = static_cast<std::int8_t>(second);
  return true;
}

}  // namespace

std::optional<DateTime> ParseDateLiteral(std::string_view text) {
  Reader reader(text);
  DateTime date;
  date.year = 1899;  // the date of a time without one
  date.month = 12;
  date.day = 30;
  int number = 0;
  reader.SkipBlanks();
  int digits = reader.TakeNumber(number);
  if (digits == 0) return std::nullopt;
  if (!reader.Take(':')) {
    if (!ReadDay(reader, number, digits, date)) return std::nullopt;
    reader.SkipBlanks();
    if (reader.AtEnd()) return date;
    if (reader.TakeNumber(number) == 0 || !reader.Take(':')) return std::nullopt;
  }
  if (!ReadTime(reader, number, date)) return std::nullopt;
  reader.SkipBlanks();
  if (!reader.AtEnd()) return std::nullopt;
  return date;
}

}  // namespace kxrestore::engine::jet_sql
