// Text as it is displayed. Characters that are invisible, or that change how the rest reads, are replaced:
// control characters by control pictures, direction marks, other invisible characters and unpaired surrogates
// by "[U+202E]" and the like, invalid bytes by U+FFFD. Joiners and variation selectors stay where the
// spelling needs them: after a character of a script, or an emoji, that takes them.
//
// For display only: copying, marking and searching use the original text.
#pragma once

#include <string>
#include <string_view>

namespace kxrestore {

std::string Shown(std::string_view text);

// The same for a text of several lines: tabs and line breaks stay.
std::string ShownLines(std::string_view text);

}  // namespace kxrestore
