// Routines on UTF-8 text. Everything inside the component is UTF-8; rules that count characters count code
// points. A byte that is not valid UTF-8 counts as one character and compares as itself.
#pragma once

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

// Collation for lists that people read: accented letters sort beside plain ones, and accents decide only
// between texts that are otherwise equal. Negative, positive, or zero for texts that differ in case only.
int CompareForSorting(std::string_view left, std::string_view right);
// The same with digits counted as the number that they write: "Archive 2" before "Archive 10".
int CompareAsPeopleCount(std::string_view left, std::string_view right);

}  // namespace kxrestore
