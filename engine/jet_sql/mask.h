// The one grammar of the Like operator's masks: * any text, ? one character, # one digit, [a-z] one of a
// list,
// [!a-z] one that is not in it. Case does not count. A "[" that is never closed stands for itself, [] for
// nothing and
// [!] for "!".
#pragma once

#include <string_view>
#include <vector>

namespace kxrestore::engine::jet_sql {

struct MaskElement {
  enum class Kind { kLiteral, kAnyRun, kAnyOne, kDigit, kList };
  struct Range {
    char32_t first, last;  // folded, in their order
  };

  Kind kind;
  char32_t character = 0;  // of a literal, as written
  bool negated = false;    // of a list
  std::vector<Range> ranges;

  bool IsRun() const { return kind == Kind::kAnyRun; }
};

// No run follows another, and a list of one character is a literal.
std::vector<MaskElement> ParseMask(std::string_view mask);

}  // namespace kxrestore::engine::jet_sql
