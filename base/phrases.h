// The texts of the dialog that its interface and design do not fix. They are English; a file of keys and
// texts can replace some or all of them (docs/languages.md).
//
// There is one table per process. It must not be replaced while a form is shown.
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

// The text in the current language, valid until the table is replaced.
const std::string& Say(Phrase phrase);
// The same with "{1}", "{2}" ... replaced. A placeholder without a value stays.
std::string Say(Phrase phrase, std::initializer_list<std::string_view> values);
// The first phrase for 1, the second for every other number.
constexpr Phrase OneOrMore(std::int64_t count, Phrase one, Phrase more) {
  return count == 1 ? one : more;
}

std::string_view KeyOf(Phrase phrase);
const std::string& English(Phrase phrase);

// Replaces phrases from the contents of a file: UTF-8, one line "Key = text" per phrase, "\n" for a line
// break and "\\" for a backslash. Blanks around key and text are trimmed. Empty lines, lines that begin with
// "#", unknown keys and malformed lines are ignored; missing phrases stay English. Returns the number of
// phrases read.
std::size_t UsePhrases(std::string_view file);

}  // namespace kxrestore
