// What a list is narrowed down to: words in the name, a range of dates, a range of sizes, a backup set.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kxrestore::controls {

struct ListFilter {
  static constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();
  static constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();

  // Separated by blanks. The name must contain all of them, in any order, ignoring case. A "*" within a word
  // matches any text.
  std::string words;
  std::int64_t from = kMin, to = kMax;          // platform::TimeNumber, both inclusive
  std::int64_t minSize = kMin, maxSize = kMax;  // bytes, both inclusive
  std::optional<std::int64_t> setId;

  // Whether it lets every entry pass.
  bool IsOpen() const;
  friend bool operator==(const ListFilter&, const ListFilter&) = default;
};

// A filter prepared for matching many entries.
class ListMatcher {
 public:
  explicit ListMatcher(ListFilter filter);

  // Whether a name contains all the words. `ascii`: it is ASCII throughout, which is quicker to match.
  bool MatchesName(std::string_view name, bool ascii) const;
  // An unknown time or size matches only a filter that does not restrict it.
  bool MatchesNumbers(std::int64_t time, bool timeKnown, std::int64_t size, bool sizeKnown,
                      std::int64_t setId) const;
  bool AsksForName() const { return !m_words.empty(); }

 private:
  struct Word {
    std::vector<std::string> pieces;  // folded, in the order in which the name must contain them
    bool ascii = true;                // throughout
  };

  ListFilter m_filter;
  std::vector<Word> m_words;
};

}  // namespace kxrestore::controls
