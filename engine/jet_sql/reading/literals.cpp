#include "engine/jet_sql/reading/literals.h"

#include <array>
#include <charconv>
#include <cstring>

#include "engine/jet_sql/reading/lexer.h"

namespace kxrestore::engine::jet_sql {
namespace {

enum CharacterClass : std::uint8_t {
  kPlain,
  kWordClass,
  kDigitClass,
  kBlankClass,
  kOperatorClass,
  kSpecialClass
};

constexpr std::array<std::uint8_t, 256> MakeClasses() {
  std::array<std::uint8_t, 256> classes{};
  for (int c = 0; c < 256; ++c) {
    if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c >= 0x80) classes[c] = kWordClass;
    if (c >= '0' && c <= '9') classes[c] = kDigitClass;
    if (c == ' ' || (c >= '\t' && c <= '\r')) classes[c] = kBlankClass;
  }
  for (const char c : {'=', '<', '>'}) classes[static_cast<unsigned char>(c)] = kOperatorClass;
  for (const char c : {'\'', '"', '[', '#', kParameterMark, '.'}) {
    classes[static_cast<unsigned char>(c)] = kSpecialClass;
  }
  return classes;
}

constexpr std::array<std::uint8_t, 256> kClasses = MakeClasses();

std::uint8_t ClassOf(char c) {
  return kClasses[static_cast<unsigned char>(c)];
}

class Extractor {
 public:
  Extractor(std::string_view source, ExtractedLiterals& result)
      : m_begin(source.data()),
        m_position(source.data()),
        m_end(source.data() + source.size()),
        m_result(result) {
    m_result.key.clear();
    m_result.count = 0;
  }

  bool Run() {
    const char* copied = m_begin;  // what lies before it is in the key
    bool wanted = false;           // the next thing is an operand
    while (m_position < m_end) {
      const char c = *m_position;
      switch (ClassOf(c)) {
        case kBlankClass:
          ++m_position;
          continue;
        case kOperatorClass:
          ++m_position;
          wanted = true;
          continue;
        case kWordClass: {
          const char* start = m_position;
          SkipWord();
          wanted = m_position - start == 4 && IsKeyword({start, 4}, "LIKE");
          continue;
        }
        case kDigitClass:
        case kPlain: {
          const bool number = ClassOf(c) == kDigitClass ||
                              (c == '-' && m_position + 1 < m_end && ClassOf(m_position[1]) == kDigitClass);
          if (wanted && number) {
            Append(copied);
            const char* start = m_position;
            if (!TakeNumber()) {
              m_position = start;
              ++m_position;
              SkipWord();
              copied = start;
            } else {
              copied = m_position;
            }
          } else if (ClassOf(c) == kDigitClass) {
            SkipWord();
          } else {
            ++m_position;
          }
          wanted = false;
          continue;
        }
        default:
          break;
      }
      if (c == kParameterMark) return false;
      if (c == '\'' || c == '"') {
        if (wanted) {
          Append(copied);
          if (!TakeText(c)) return false;
          copied = m_position;
        } else if (!SkipBehind(c)) {
          return false;
        }
      } else if (c == '[' || c == '#') {
        if (!SkipBehind(c == '[' ? ']' : '#')) return false;
      } else {
        ++m_position;
        SkipWord();  // the digits behind a point are no number of their own
      }
      wanted = false;
    }
    Append(copied);
    return true;
  }

 private:
  void Append(const char* copied) { m_result.key.append(copied, m_position); }

  void SkipWord() {
    while (m_position < m_end && (ClassOf(*m_position) == kWordClass || ClassOf(*m_position) == kDigitClass ||
                                  *m_position == '$')) {
      ++m_position;
    }
  }

  bool SkipBehind(char closing) {
    const void* found =
        std::memchr(m_position + 1, closing, static_cast<std::size_t>(m_end - m_position - 1));
    if (found == nullptr) return false;
    m_position = static_cast<const char*>(found) + 1;
    return true;
  }

  Literal& NextLiteral() {
    if (m_result.count == m_result.literals.size()) m_result.literals.emplace_back();
    m_result.key.push_back(kParameterMark);
    return m_result.literals[m_result.count++];
  }

  bool TakeText(char quote) {
    Literal& literal = NextLiteral();
    literal.kind = Literal::Kind::kText;
    literal.text.clear();
    for (;;) {
      const char* start = m_position + 1;
      if (!SkipBehind(quote)) return false;
      literal.text.append(start, m_position - 1);
      if (m_position == m_end || *m_position != quote) return true;
      literal.text.push_back(quote);
    }
  }

  bool TakeNumber() {
    const char* last = m_position + (*m_position == '-' ? 1 : 0);
    bool real = false;
    while (last < m_end && ClassOf(*last) == kDigitClass) ++last;
    if (last < m_end && *last == '.') {
      real = true;
      ++last;
      while (last < m_end && ClassOf(*last) == kDigitClass) ++last;
    }
    if (last < m_end && (ClassOf(*last) == kWordClass || *last == '.' || *last == '$')) return false;
    std::int64_t integer = 0;
    double number = 0;
    if (!real) {
      const auto [end, error] = std::from_chars(m_position, last, integer);
      if (error != std::errc() || end != last) return false;
    } else {
      const auto [end, error] = std::from_chars(m_position, last, number);
      if (error != std::errc() || end != last) return false;
    }
    Literal& literal = NextLiteral();
    literal.kind = real ? Literal::Kind::kReal : Literal::Kind::kInteger;
    literal.integer = integer;
    literal.real = number;
    m_position = last;
    return true;
  }

  const char* m_begin;
  const char* m_position;
  const char* m_end;
  ExtractedLiterals& m_result;
};

}  // namespace

bool ExtractLiterals(std::string_view source, ExtractedLiterals& result) {
  constexpr std::size_t kMaxLiterals = 500;  // engines bound how many parameters a statement may have
  return Extractor(source, result).Run() && result.count <= kMaxLiterals;
}

}  // namespace kxrestore::engine::jet_sql
