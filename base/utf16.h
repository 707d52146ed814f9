// Conversion between UTF-8, used inside, and the UTF-16 of COM, Windows and ODBC. Windows file names may
// contain an unpaired surrogate; it is encoded in three bytes, so that every UTF-16 text survives the round
// trip. An invalid byte becomes U+FFFD. Units are char16_t, or wchar_t where that has 16 bits.
#pragma once

#include <string>
#include <string_view>

namespace kxrestore {

// Decodes the character or unpaired surrogate at `position` and advances `position` past it; U+FFFD for an
// invalid byte.
char32_t NextCharacterOrHalf(std::string_view text, std::size_t& position);

template <class Unit>
void AppendUtf8(std::string& out, std::basic_string_view<Unit> text);

template <class Unit>
std::basic_string<Unit> ToUtf16(std::string_view text);

std::string FromWide(std::u16string_view text);
std::string FromWide(std::wstring_view text);
inline std::wstring ToWide(std::string_view text) {
  return ToUtf16<wchar_t>(text);
}

}  // namespace kxrestore
