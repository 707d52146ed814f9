// What a list is narrowed down to: words in the name, a span of dates, of sizes, a set.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kxrestore::controls {

struct ListFilter {
  static constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
  static constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

  // Separated by blanks; all of them must stand in the name, in either case and any order. A "*" in a word
  // stands for any text.
  std::string words;
  std::int64_t from = kLeast, to = kMost;             // platform::TimeNumber, both inclusive
  std::int64_t leastSize = kLeast, mostSize = kMost;  // bytes, both inclusive
  std::optional<std::int64_t> setId;

  // Whether it lets every entry pass.
  bool IsOpen() const;
  friend bool operator==(const ListFilter&, const ListFilter&) = default;
};

// A filter ready to be asked a million times.
class ListMatcher {
 public:
  explicit ListMatcher(const ListFilter& filter);

  // Whether a name holds all the words. `plain`: it is ASCII throughout, which is quicker.
  bool MatchesName(std::string_view name, bool plain) const;
  // A time or size that is not known passes only where none is asked for.
  bool MatchesNumbers(std::int64_t time, bool timeKnown, std::int64_t size, bool sizeKnown,
                      std::int64_t setId) const;
  bool AsksForName() const { return !m_words.empty(); }

 private:
  struct Word {
    std::vector<std::string> pieces;  // folded; one must follow the other
    bool plain = true;                // ASCII throughout
  };
  static bool Holds(const Word& word, std::string_view text, bool folded);

  ListFilter m_filter;
  std::vector<Word> m_words;
};

// Whether a text is ASCII throughout.
bool IsPlain(std::string_view text);

}  // namespace kxrestore::controls
