#include "base/utf16.h"

#include "base/text.h"

namespace kxrestore {
namespace {

bool IsHighHalf(char32_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLowHalf(char32_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

// AppendCharacter and NextCharacter do not handle halves: to them these are three invalid bytes.
void AppendHalf(std::string& out, char32_t half) {
  out.push_back('\xED');
  out.push_back(static_cast<char>(0x80 | ((half >> 6) & 0x3F)));
  out.push_back(static_cast<char>(0x80 | (half & 0x3F)));
}

// The half at `start`, advancing `position` past it; U+FFFD when there is none.
char32_t HalfAt(std::string_view text, std::size_t start, std::size_t& position) {
  const std::string_view bytes = text.substr(start, 3);
  if (bytes.size() < 3 || bytes[0] != '\xED' || (bytes[1] & 0xE0) != 0xA0 || (bytes[2] & 0xC0) != 0x80) {
    return 0xFFFD;
  }
  position = start + 3;
  return 0xD000u | (bytes[1] & 0x3Fu) << 6 | (bytes[2] & 0x3Fu);
}

}  // namespace

char32_t NextCharacterOrHalf(std::string_view text, std::size_t& position) {
  const std::size_t start = position;
  const char32_t character = NextCharacter(text, position);
  return IsLowHalf(character) ? HalfAt(text, start, position) : character;  // a stray byte
}

template <class Unit>
void AppendUtf8(std::string& out, std::basic_string_view<Unit> text) {
  out.reserve(out.size() + text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char32_t unit = static_cast<char16_t>(text[i]);
    if (unit < 0x80) {
      out.push_back(static_cast<char>(unit));
    } else if (IsHighHalf(unit) && i + 1 < text.size() && IsLowHalf(text[i + 1])) {
      AppendCharacter(out, 0x10000 + ((unit - 0xD800) << 10) + (text[++i] - 0xDC00u));
    } else if (IsHighHalf(unit) || IsLowHalf(unit)) {
      AppendHalf(out, unit);
    } else {
      AppendCharacter(out, unit);
    }
  }
}

template <class Unit>
std::basic_string<Unit> ToUtf16(std::string_view text) {
  std::basic_string<Unit> out;
  out.reserve(text.size());
  for (std::size_t position = 0; position < text.size();) {
    if (const auto byte = static_cast<unsigned char>(text[position]); byte < 0x80) {
      out.push_back(byte);
      ++position;
      continue;
    }
    const char32_t character = NextCharacterOrHalf(text, position);
    if (character < 0x10000) {
      out.push_back(static_cast<Unit>(character));
    } else {
      out.push_back(static_cast<Unit>(0xD7C0 + (character >> 10)));
      out.push_back(static_cast<Unit>(0xDC00 | (character & 0x3FF)));
    }
  }
  return out;
}

std::string FromWide(std::u16string_view text) {
  std::string out;
  AppendUtf8(out, text);
  return out;
}

std::string FromWide(std::wstring_view text) {
  std::string out;
  AppendUtf8(out, text);
  return out;
}

template void AppendUtf8(std::string&, std::basic_string_view<char16_t>);
template void AppendUtf8(std::string&, std::basic_string_view<wchar_t>);
template std::basic_string<char16_t> ToUtf16(std::string_view);
template std::basic_string<wchar_t> ToUtf16(std::string_view);

}  // namespace kxrestore
