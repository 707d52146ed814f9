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

// Parts that are not written keep their values: a time alone is one of day 0 of the desktop engine.
struct Parts {
  int year = 1899, month = 12, day = 30, hour = 0, minute = 0, second = 0;
};

bool ReadDay(Reader& reader, int first, int digits, Parts& parts) {
  const auto takeSeparator = [&] { return reader.Take('-') || reader.Take('/'); };
  int second = 0, third = 0;
  if (!takeSeparator() || reader.TakeNumber(second) == 0 || !takeSeparator()) return false;
  const int lastDigits = reader.TakeNumber(third);
  if (lastDigits == 0) return false;
  if (digits > 2) {
    parts = {.year = first, .month = second, .day = third};
  } else {
    const int century = lastDigits > 2 ? 0 : third < 30 ? 2000 : 1900;
    parts = {.year = century + third, .month = first, .day = second};
  }
  return true;
}

bool ReadTime(Reader& reader, int hour, Parts& parts) {
  if (reader.TakeNumber(parts.minute) == 0) return false;
  if (reader.Take(':') && reader.TakeNumber(parts.second) == 0) return false;
  reader.SkipBlanks();
  const bool afternoon = reader.TakeWord("PM");
  if (afternoon || reader.TakeWord("AM")) {
    if (hour < 1 || hour > 12) return false;
    hour = hour % 12 + (afternoon ? 12 : 0);
  }
  parts.hour = hour;
  return true;
}

}  // namespace

std::optional<DateTime> ParseDateLiteral(std::string_view text) {
  Reader reader(text);
  Parts parts;
  int number = 0;
  reader.SkipBlanks();
  const int digits = reader.TakeNumber(number);
  bool hasTime = digits > 0 && reader.Take(':');
  if (!hasTime) {
    if (digits == 0 || !ReadDay(reader, number, digits, parts)) return std::nullopt;
    reader.SkipBlanks();
    hasTime = !reader.AtEnd();
    if (hasTime && (reader.TakeNumber(number) == 0 || !reader.Take(':'))) return std::nullopt;
  }
  if (hasTime && !ReadTime(reader, number, parts)) return std::nullopt;
  reader.SkipBlanks();
  if (!reader.AtEnd()) return std::nullopt;
  return DateOf(parts.year, parts.month, parts.day, parts.hour, parts.minute, parts.second);
}

}  // namespace kxrestore::engine::jet_sql
