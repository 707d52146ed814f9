// Between the UTF-8 inside and the UTF-16 of COM, Windows and ODBC. File names of Windows may hold half of a
// surrogate pair; such a half is kept in three bytes, so that every UTF-16 text comes back as it went in. A
// byte that makes no sense becomes U+FFFD. Units are char16_t, or wchar_t where that has 16 bits.
#pragma once

#include <string>
#include <string_view>

namespace kxrestore {

// Decodes the character at `position`, or half of a surrogate pair, and moves `position` after it; U+FFFD for
// a byte that makes no sense.
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
