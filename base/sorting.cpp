#include "base/sorting.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

#include "base/text.h"

namespace kxrestore {
namespace {

struct BaseLetter {
  char32_t letter, base;
};

constexpr BaseLetter kBaseLetters[] = {
#include "base/base_letters_table.inc"
};

// Letters that Unicode does not decompose but that people expect under another letter. Case-folded.
struct Spelling {
  char32_t letter;
  char first, second;
};

constexpr Spelling kSpellings[] = {{0xDF, 's', 's'}, {0xE6, 'a', 'e'},  {0xF0, 'd', 0},  {0xF8, 'o', 0},
                                   {0xFE, 't', 'h'}, {0x111, 'd', 0},   {0x127, 'h', 0}, {0x131, 'i', 0},
                                   {0x142, 'l', 0},  {0x153, 'o', 'e'}, {0x167, 't', 0}};

// Combining marks: they follow their letter instead of being part of it.
bool IsMark(char32_t character) {
  return (character >= 0x300 && character < 0x370) || (character >= 0x1AB0 && character < 0x1B00) ||
         (character >= 0x1DC0 && character < 0x1E00) || (character >= 0x20D0 && character < 0x2100) ||
         (character >= 0xFE20 && character < 0xFE30);
}

// Without case and marks.
char32_t PlainLetter(char32_t character) {
  for (;;) {
    const auto* found =
        std::lower_bound(std::begin(kBaseLetters), std::end(kBaseLetters), character,
                         [](const BaseLetter& row, char32_t letter) { return row.letter < letter; });
    if (found == std::end(kBaseLetters) || found->letter != character) return FoldCase(character);
    character = found->base;
  }
}

// Iterates over the letters of a text in the form in which they are compared; 0 at its end.
class PlainLetters {
 public:
  explicit PlainLetters(std::string_view text) : m_text(text) {}

  char32_t Next() {
    if (m_second != 0) return std::exchange(m_second, 0);
    while (m_position < m_text.size()) {
      const char32_t character = NextCharacter(m_text, m_position);
      if (character < 0x80) return FoldCase(character) + 1;
      if (IsMark(character)) continue;
      const char32_t letter = PlainLetter(character);
      for (const Spelling& spelling : kSpellings) {
        if (spelling.letter != letter) continue;
        m_second = spelling.second == 0 ? 0 : static_cast<char32_t>(spelling.second) + 1;
        return static_cast<char32_t>(spelling.first) + 1;
      }
      return letter + 1;
    }
    return 0;
  }

 private:
  std::string_view m_text;
  std::size_t m_position = 0;
  char32_t m_second = 0;
};

}  // namespace

int CompareForSorting(std::string_view left, std::string_view right) {
  PlainLetters leftLetters(left), rightLetters(right);
  for (;;) {
    const char32_t a = leftLetters.Next(), b = rightLetters.Next();
    if (a != b) return a < b ? -1 : 1;
    if (a == 0) break;
  }
  // The texts differ only in marks or in case; marks decide, case does not.
  std::size_t i = 0, j = 0;
  while (i < left.size() && j < right.size()) {
    const char32_t a = FoldCase(NextCharacter(left, i)), b = FoldCase(NextCharacter(right, j));
    if (a != b) return a < b ? -1 : 1;
  }
  return static_cast<int>(i < left.size()) - static_cast<int>(j < right.size());
}

namespace {

bool IsDigit(char character) {
  return character >= '0' && character <= '9';
}

// Takes what the text begins with: digits, or everything up to the next digit.
std::string_view TakePiece(std::string_view& text) {
  const bool digits = IsDigit(text.front());
  std::size_t length = 1;
  while (length < text.size() && IsDigit(text[length]) == digits) ++length;
  const std::string_view piece = text.substr(0, length);
  text.remove_prefix(length);
  return piece;
}

// A number sorts where its first digit would, shorter ones before longer ones.
void AppendNumber(std::string& key, std::string_view digits) {
  digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
  AppendCharacter(key, U'0' + 1);
  for (int shift = 24; shift >= 0; shift -= 8) key.push_back(static_cast<char>(digits.size() >> shift));
  key.append(digits);
}

}  // namespace

// The letters, then the folded text: marks and leading zeros decide between texts of the same letters.
void AppendSortKey(std::string& key, std::string_view text) {
  for (std::string_view rest = text; !rest.empty();) {
    const std::string_view piece = TakePiece(rest);
    if (IsDigit(piece.front())) {
      AppendNumber(key, piece);
      continue;
    }
    PlainLetters letters(piece);
    while (const char32_t letter = letters.Next()) AppendCharacter(key, letter);
  }
  key.push_back('\0');
  AppendFolded(key, text);
}

}  // namespace kxrestore
