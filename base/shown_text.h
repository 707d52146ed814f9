// Texts as people are to see them. Characters that show nothing, or that change how the rest reads, have a
// stand-in each: control pictures for control characters, "[U+202E]" for direction marks, other invisible
// characters and halves of surrogate pairs, U+FFFD for stray bytes. Joiners and variation selectors stay
// where they belong to the spelling: after a character of a script, or an emoji, that takes them.
//
// It is for what is drawn only: what is copied, marked and looked up is the real text.
#pragma once

#include <string>
#include <string_view>

namespace kxrestore {

std::string Shown(std::string_view text);

// The same for a text of several lines: tabs and line breaks stay.
std::string ShownLines(std::string_view text);

}  // namespace kxrestore
