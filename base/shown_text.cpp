#include "base/shown_text.h"

#include <algorithm>
#include <iterator>

#include "base/text.h"
#include "base/utf16.h"

namespace kxrestore {
namespace {

struct Range {
  char32_t first, last;
};

// Control characters above ASCII, invisible format characters, line separators, and everything else that
// Unicode calls default-ignorable.
constexpr Range kUnseen[] = {{0x0080, 0x009F},  {0x00AD, 0x00AD},   {0x034F, 0x034F},   {0x061C, 0x061C},
                             {0x115F, 0x1160},  {0x17B4, 0x17B5},   {0x180B, 0x180F},   {0x200B, 0x200F},
                             {0x2028, 0x202E},  {0x2060, 0x206F},   {0x2800, 0x2800},   {0x3164, 0x3164},
                             {0xD800, 0xDFFF},  {0xFE00, 0xFE0F},   {0xFEFF, 0xFEFF},   {0xFFA0, 0xFFA0},
                             {0xFFF0, 0xFFFB},  {0x13430, 0x1343F}, {0x1BCA0, 0x1BCA3}, {0x1D173, 0x1D17A},
                             {0xE0000, 0xE0FFF}};

bool IsUnseen(char32_t character) {
  const auto range = std::lower_bound(std::begin(kUnseen), std::end(kUnseen), character,
                                      [](const Range& each, char32_t wanted) { return each.last < wanted; });
  return range != std::end(kUnseen) && range->first <= character;
}

bool IsVariationSelector(char32_t character) {
  return (character >= 0xFE00 && character <= 0xFE0F) || (character >= 0x180B && character <= 0x180D) ||
         (character >= 0xE0100 && character <= 0xE01EF);
}

bool IsJoiner(char32_t character) {
  return character == 0x200C || character == 0x200D;
}

void AppendCode(std::string& shown, char32_t character) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  shown += "[U+";
  for (int shift = character > 0xFFFF ? 20 : 12; shift >= 0; shift -= 4) {
    if (shift == 20 && character < 0x100000) continue;
    shown += kDigits[(character >> shift) & 0xF];
  }
  shown += ']';
}

// Plain ASCII, the usual case, is shown as it is.
bool IsPlain(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char byte) { return byte >= 0x20 && byte < 0x7F; });
}

std::string ShownText(std::string_view text, bool keepsBreaks) {
  std::string shown;
  if (IsPlain(text)) return shown.assign(text);
  // What precedes the current character: decides whether a joiner or variation selector belongs there.
  enum { kNothing, kSelector, kLetter } before = kNothing;
  for (std::size_t position = 0; position < text.size();) {
    const char32_t character = NextCharacterOrHalf(text, position);
    const bool stays =
        (IsJoiner(character) && before != kNothing) || (IsVariationSelector(character) && before == kLetter);
    const bool breaks = keepsBreaks && (character == '\t' || character == '\n' ||
                                        (character == '\r' && text.substr(position).starts_with('\n')));
    if (character < 0x20 && !breaks) {
      AppendCharacter(shown, 0x2400 + character);
    } else if (character == 0x7F) {
      AppendCharacter(shown, 0x2421);
    } else if (IsUnseen(character) && !stays) {
      AppendCode(shown, character);
    } else {
      AppendCharacter(shown, character);
    }
    if (stays) {
      before = IsJoiner(character) ? kNothing : kSelector;
    } else {
      before = character >= 0x0600 && !IsUnseen(character) ? kLetter : kNothing;
    }
  }
  return shown;
}

}  // namespace

std::string Shown(std::string_view text) {
  return ShownText(text, false);
}

std::string ShownLines(std::string_view text) {
  return ShownText(text, true);
}

}  // namespace kxrestore
