// Routines on UTF-8 text. Everything inside the component is UTF-8; rules that count characters count code
// points. A byte that is not valid UTF-8 counts as one character and compares as itself.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kxrestore {

// Number of characters.
std::size_t CharacterCount(std::string_view text);

// The first `count` characters, or the whole text when it is shorter.
std::string_view LeftCharacters(std::string_view text, std::size_t count);

// Decodes the character at `position` and advances `position` past it. `position` must be inside the text.
char32_t NextCharacter(std::string_view text, std::size_t& position);

// Appends one character as UTF-8.
void AppendCharacter(std::string& text, char32_t character);

// Simple case folding of one character: characters that differ only in case fold to the same one.
char32_t FoldCase(char32_t character);
std::string FoldCase(std::string_view text);
void AppendFolded(std::string& folded, std::string_view text);  // for callers that keep their buffer

bool EqualIgnoringCase(std::string_view left, std::string_view right);
bool ContainsIgnoringCase(std::string_view text, std::string_view piece);

bool IsAscii(std::string_view text);

// Folds an ASCII letter; any other byte stays as it is.
constexpr char FoldAscii(char byte) {
  return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}

// Calls `call` with each non-empty piece of a text between separators.
template <std::invocable<std::string_view> Call>
void ForEachPiece(std::string_view text, char separator, Call&& call) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(separator), text.size());
    if (end > 0) call(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

}  // namespace kxrestore
