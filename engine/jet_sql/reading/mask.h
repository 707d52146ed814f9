// The grammar of masks of the Like operator: * any text, ? one character, # one digit, [a-z] one character of
// a list, [!a-z] one character outside it. Case is ignored. A "[" that is never closed is literal, [] matches
// the empty text and [!] is a literal "!".
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kxrestore::engine::jet_sql {

struct MaskElement {
  enum class Kind { kLiteral, kAnyRun, kAnyOne, kDigit, kList };
  struct Range {
    char32_t first, last;  // case-folded; first <= last
  };

  Kind kind;
  char32_t character = 0;  // of a literal, as written
  bool negated = false;    // of a list
  std::vector<Range> ranges;

  bool IsRun() const { return kind == Kind::kAnyRun; }
};

// The result never holds two runs in a row, and a list of a single character is returned as a literal.
std::vector<MaskElement> ParseMask(std::string_view mask);

// How a database writes masks. A backslash precedes each character of `literals` and, inside a list, each of
// `members`.
struct MaskSyntax {
  std::string_view anyRun, anyOne, literals, members;
};
std::string PrintMask(const std::vector<MaskElement>& mask, const MaskSyntax& syntax);

}  // namespace kxrestore::engine::jet_sql
