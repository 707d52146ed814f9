#include "base/utf16.h"

#include <cstdint>

namespace kxrestore {
namespace {

bool IsHighHalf(std::uint32_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLowHalf(std::uint32_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

// A character above ASCII. Halves of pairs are let through.
void AppendMultiByte(std::string& out, std::uint32_t character) {
  const auto tail = [&](int shift) {
    out.push_back(static_cast<char>(0x80 | ((character >> shift) & 0x3F)));
  };
  if (character < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (character >> 6)));
    tail(0);
  } else if (character < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (character >> 12)));
    tail(6);
    tail(0);
  } else {
    out.push_back(static_cast<char>(0xF0 | (character >> 18)));
    tail(12);
    tail(6);
    tail(0);
  }
}

// The character that begins at `position`, which moves behind it; false, and one byte further, when there is
// none.
bool Decode(std::string_view text, std::size_t& position, std::uint32_t& character) {
  const auto lead = static_cast<unsigned char>(text[position]);
  const std::size_t start = position++;
  if (lead < 0x80) {
    character = lead;
    return true;
  }
  const int tails = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
  if (lead < 0xC2 || lead > 0xF4 || text.size() - start <= static_cast<std::size_t>(tails)) return false;
  character = lead & (0x3F >> tails);
  for (int i = 1; i <= tails; ++i) {
    const auto byte = static_cast<unsigned char>(text[start + i]);
    if ((byte & 0xC0) != 0x80) return false;
    character = character << 6 | (byte & 0x3F);
  }
  if ((tails == 2 && character < 0x800) || (tails == 3 && (character < 0x10000 || character > 0x10FFFF))) {
    return false;
  }
  position = start + tails + 1;
  return true;
}

}  // namespace

template <class Unit>
void AppendUtf8(std::string& out, std::basic_string_view<Unit> text) {
  out.reserve(out.size() + text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    std::uint32_t character = static_cast<std::uint16_t>(text[i]);
    if (character < 0x80) {
      out.push_back(static_cast<char>(character));
      continue;
    }
    if (IsHighHalf(character) && i + 1 < text.size() && IsLowHalf(text[i + 1])) {
      character = 0x10000 + ((character - 0xD800) << 10) + (text[++i] - 0xDC00u);
    }
    AppendMultiByte(out, character);
  }
}

template <class Unit>
std::basic_string<Unit> ToUtf16(std::string_view text) {
  std::basic_string<Unit> out;
  out.reserve(text.size());
  for (std::size_t position = 0; position < text.size();) {
    std::uint32_t character = 0;
    if (!Decode(text, position, character)) character = 0xFFFD;
    if (character < 0x10000) {
      out.push_back(static_cast<Unit>(character));
    } else {
      out.push_back(static_cast<Unit>(0xD7C0 + (character >> 10)));
      out.push_back(static_cast<Unit>(0xDC00 | (character & 0x3FF)));
    }
  }
  return out;
}

template void AppendUtf8(std::string&, std::basic_string_view<char16_t>);
template void AppendUtf8(std::string&, std::basic_string_view<wchar_t>);
template std::basic_string<char16_t> ToUtf16(std::string_view);
template std::basic_string<wchar_t> ToUtf16(std::string_view);

}  // namespace kxrestore
