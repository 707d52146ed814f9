// A mask of the Like operator, compiled once: * any text, ? one character, # one digit, [a-z] one of a list,
// [!a-z] one that is not in it. Case does not count. A "[" that is never closed stands for itself.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kxrestore::engine::jet_sql {

class LikePattern {
 public:
  explicit LikePattern(std::string_view mask);

  bool Matches(std::string_view text) const;

 private:
  enum class Kind { kLiteral, kAnyOne, kAnyRun, kDigit, kList };
  struct Range {
    char32_t first, last;
  };
  struct Element {
    Kind kind;
    char32_t character = 0;
    bool negated = false;
    std::vector<Range> ranges;
  };

  void ChooseNeeded();
  bool HoldsNeeded(std::string_view text) const;
  std::size_t ReadList(std::string_view folded, std::size_t position);
  bool MatchesPieces(std::string_view folded) const;
  bool MatchesGeneral(std::string_view folded) const;
  static bool MatchesOne(const Element& element, char32_t character);

  bool m_simple = false;              // nothing but * and plain characters
  std::vector<std::string> m_pieces;  // what stands between the *
  std::vector<Element> m_elements;
  char m_needed = '\0';          // a letter, in either case, or a digit that every match holds
  mutable std::string m_folded;  // kept so that a scan of a million rows allocates once
};

}  // namespace kxrestore::engine::jet_sql
