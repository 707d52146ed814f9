#include "base/text.h"

#include <algorithm>
#include <cstring>

namespace kxrestore {
namespace {

// A byte that is not part of valid UTF-8 decodes to this plus its value: a range that no valid text decodes
// to.
constexpr char32_t kStrayByte = 0xDC00;

unsigned char ByteAt(std::string_view text, std::size_t position) {
  return static_cast<unsigned char>(text[position]);
}

// Decodes a sequence that begins with a byte above 0x7F.
char32_t DecodeMultiByte(std::string_view text, std::size_t& position) {
  const unsigned char lead = ByteAt(text, position);
  const std::size_t length = lead >= 0xF0 && lead <= 0xF4 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 0;
  const char32_t stray = kStrayByte + lead;
  if (length == 0 || lead > 0xF4 || position + length > text.size()) {
    ++position;
    return stray;
  }
  char32_t character = lead & (0xFFu >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    const unsigned char next = ByteAt(text, position + i);
    if ((next & 0xC0) != 0x80) {
      ++position;
      return stray;
    }
    character = (character << 6) | (next & 0x3F);
  }
  constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  if (character < kSmallest[length] || character > 0x10FFFF || (character >= 0xD800 && character < 0xE000)) {
    ++position;
    return stray;
  }
  position += length;
  return character;
}

char32_t NextFolded(std::string_view text, std::size_t& position) {
  const unsigned char byte = ByteAt(text, position);
  if (byte < 0x80) {
    ++position;
    return byte >= 'A' && byte <= 'Z' ? byte + 32u : byte;
  }
  return FoldCase(DecodeMultiByte(text, position));
}

}  // namespace

char32_t NextCharacter(std::string_view text, std::size_t& position) {
  const unsigned char byte = ByteAt(text, position);
  if (byte < 0x80) {
    ++position;
    return byte;
  }
  return DecodeMultiByte(text, position);
}

std::size_t CharacterCount(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t position = 0; position < text.size(); ++count) NextCharacter(text, position);
  return count;
}

std::string_view LeftCharacters(std::string_view text, std::size_t count) {
  std::size_t position = 0;
  while (count > 0 && position < text.size()) {
    NextCharacter(text, position);
    --count;
  }
  return text.substr(0, position);
}

void AppendCharacter(std::string& text, char32_t character) {
  const auto append = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
  if (character >= kStrayByte + 0x80 && character <= kStrayByte + 0xFF) {
    append(character - kStrayByte);
    return;
  }
  if (character > 0x10FFFF || (character >= 0xD800 && character < 0xE000)) character = 0xFFFD;
  if (character < 0x80) {
    append(character);
  } else if (character < 0x800) {
    append(0xC0 | (character >> 6));
    append(0x80 | (character & 0x3F));
  } else if (character < 0x10000) {
    append(0xE0 | (character >> 12));
    append(0x80 | ((character >> 6) & 0x3F));
    append(0x80 | (character & 0x3F));
  } else {
    append(0xF0 | (character >> 18));
    append(0x80 | ((character >> 12) & 0x3F));
    append(0x80 | ((character >> 6) & 0x3F));
    append(0x80 | (character & 0x3F));
  }
}

namespace {

// Folds the ASCII letters, eight bytes at a time. True when there was nothing but ASCII.
bool FoldAsciiLetters(char* text, std::size_t size) {
  constexpr std::uint64_t kEach = 0x0101010101010101;
  std::uint64_t seen = 0;
  std::size_t i = 0;
  for (; i + 8 <= size; i += 8) {
    std::uint64_t bytes;
    std::memcpy(&bytes, text + i, sizeof bytes);
    seen |= bytes;
    // The top bit of a byte's sum tells whether its lower seven bits reach 'A', and whether they pass 'Z'.
    const std::uint64_t low = bytes & (0x7F * kEach);
    const std::uint64_t fromA = low + (0x80 - 'A') * kEach, beyondZ = low + (0x7F - 'Z') * kEach;
    const std::uint64_t capitals = (fromA ^ beyondZ) & ~bytes & (0x80 * kEach);
    bytes |= capitals >> 2;
    std::memcpy(text + i, &bytes, sizeof bytes);
  }
  for (; i < size; ++i) {
    seen |= static_cast<unsigned char>(text[i]);
    text[i] = FoldAscii(text[i]);
  }
  return (seen & (0x80 * kEach)) == 0;
}

// Writes the folded characters beyond ASCII into a copy of the text. False when the folded form of one has
// another length.
bool FoldInPlace(char* copy, std::string_view text) {
  for (std::size_t position = 0; position < text.size();) {
    if (ByteAt(text, position) < 0x80) {
      ++position;
      continue;
    }
    char* const bytes = copy + position;
    const char32_t character = DecodeMultiByte(text, position);
    const char32_t folded = FoldCase(character);
    if (folded == character) continue;
    if (character >= 0x800 || folded < 0x80 || folded >= 0x800) return false;
    bytes[0] = static_cast<char>(0xC0 | (folded >> 6));
    bytes[1] = static_cast<char>(0x80 | (folded & 0x3F));
  }
  return true;
}

}  // namespace

void AppendFolded(std::string& folded, std::string_view text) {
  const std::size_t before = folded.size();
  folded.append(text);
  char* const out = folded.data() + before;
  if (FoldAsciiLetters(out, text.size()) || FoldInPlace(out, text)) return;
  folded.resize(before);
  for (std::size_t position = 0; position < text.size();) {
    const char32_t character = NextFolded(text, position);
    if (character < 0x80) {
      folded.push_back(static_cast<char>(character));
    } else {
      AppendCharacter(folded, character);
    }
  }
}

std::string FoldCase(std::string_view text) {
  std::string folded;
  AppendFolded(folded, text);
  return folded;
}

bool EqualIgnoringCase(std::string_view left, std::string_view right) {
  std::size_t i = 0, j = 0;
  while (i < left.size() && j < right.size()) {
    if (NextFolded(left, i) != NextFolded(right, j)) return false;
  }
  return i == left.size() && j == right.size();
}

bool IsAscii(std::string_view text) {
  std::uint64_t seen = 0;
  std::size_t i = 0;
  for (; i + sizeof seen <= text.size(); i += sizeof seen) {
    std::uint64_t bytes;
    std::memcpy(&bytes, text.data() + i, sizeof bytes);
    seen |= bytes;
  }
  for (; i < text.size(); ++i) seen |= ByteAt(text, i);
  return (seen & 0x8080808080808080) == 0;
}

bool ContainsIgnoringCase(std::string_view text, std::string_view piece) {
  return FoldCase(text).find(FoldCase(piece)) != std::string::npos;
}

}  // namespace kxrestore
