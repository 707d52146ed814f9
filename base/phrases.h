// The dialog's own words: every text that is shown and not fixed by the component's interface or design. They
// are English, and a file of keys and texts can replace them, wholly or in part (docs/languages.md).
//
// There is one table a process. It is replaced before the form is made and not while one is shown.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace kxrestore {

enum class Phrase : std::uint16_t {
#define KX_PHRASE(key, text) k##key,
#include "base/phrases.inc"
#undef KX_PHRASE
  kCount
};
inline constexpr auto kPhrases = static_cast<std::size_t>(Phrase::kCount);

// The text in the current language. It stays where it is until the table is replaced.
const std::string& Say(Phrase phrase);
// The same with "{1}", "{2}" ... filled in; a place that nothing is given for stays as it is.
std::string Say(Phrase phrase, std::initializer_list<std::string_view> values);
// One phrase for 1, another for every other number.
constexpr Phrase OneOrMore(std::int64_t count, Phrase one, Phrase more) {
  return count == 1 ? one : more;
}

std::string_view KeyOf(Phrase phrase);
const std::string& English(Phrase phrase);

// Replaces the table by what a file holds: UTF-8, a line "Key = text" a phrase, lines that begin with "#" and
// empty lines left out, "\n" for a line break and "\\" for a backslash. Blanks around key and text do not
// count. What the file does not say stays English; keys that nothing is known of, and lines that are none,
// are passed over. Returns how many phrases it holds.
std::size_t UsePhrases(std::string_view file);

}  // namespace kxrestore
