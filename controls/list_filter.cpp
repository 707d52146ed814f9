#include "controls/list_filter.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "base/text.h"

namespace kxrestore::controls {

namespace {

// Small letters for the large ones of ASCII; every other byte as it is.
constexpr std::array<char, 256> kSmall = [] {
  std::array<char, 256> table{};
  for (int byte = 0; byte < 256; ++byte) {
    table[static_cast<std::size_t>(byte)] =
        static_cast<char>(byte >= 'A' && byte <= 'Z' ? byte - 'A' + 'a' : byte);
  }
  return table;
}();

char Small(char character) {
  return kSmall[static_cast<unsigned char>(character)];
}

// Where a piece, in small letters, first stands in a text at or behind `start`; npos when nowhere.
std::size_t FindSmall(std::string_view text, std::string_view piece, std::size_t start) {
  if (piece.size() > text.size()) return std::string_view::npos;
  const std::size_t last = text.size() - piece.size();
  const char first = piece[0];
  for (std::size_t at = start; at <= last; ++at) {
    if (Small(text[at]) != first) continue;
    std::size_t same = 1;
    while (same < piece.size() && Small(text[at + same]) == piece[same]) ++same;
    if (same == piece.size()) return at;
  }
  return std::string_view::npos;
}

template <class Call>
void Split(std::string_view text, char separator, Call&& call) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(separator), text.size());
    if (end > 0) call(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

}  // namespace

bool IsPlain(std::string_view text) {
  std::uint64_t all = 0;
  std::size_t at = 0;
  for (; at + sizeof all <= text.size(); at += sizeof all) {
    std::uint64_t eight;
    std::memcpy(&eight, text.data() + at, sizeof eight);
    all |= eight;
  }
  for (; at < text.size(); ++at) all |= static_cast<unsigned char>(text[at]);
  return (all & 0x8080808080808080) == 0;
}

bool ListFilter::IsOpen() const {
  return *this == ListFilter() || (words.find_first_not_of(" *") == std::string::npos && from == kLeast &&
                                   to == kMost && leastSize == kLeast && mostSize == kMost && !setId);
}

ListMatcher::ListMatcher(const ListFilter& filter) : m_filter(filter) {
  Split(m_filter.words, ' ', [this](std::string_view text) {
    Word word;
    Split(text, '*', [&](std::string_view piece) { word.pieces.push_back(FoldCase(piece)); });
    if (word.pieces.empty()) return;
    word.plain = std::all_of(word.pieces.begin(), word.pieces.end(), IsPlain);
    m_words.push_back(std::move(word));
  });
}

bool ListMatcher::Holds(const Word& word, std::string_view text, bool folded) {
  std::size_t at = 0;
  for (const std::string& piece : word.pieces) {
    at = folded ? text.find(piece, at) : FindSmall(text, piece, at);
    if (at == std::string_view::npos) return false;
    at += piece.size();
  }
  return true;
}

bool ListMatcher::MatchesName(std::string_view name, bool plain) const {
  if (plain) {
    return std::all_of(m_words.begin(), m_words.end(),
                       [&](const Word& word) { return word.plain && Holds(word, name, false); });
  }
  const std::string folded = FoldCase(name);
  return std::all_of(m_words.begin(), m_words.end(),
                     [&](const Word& word) { return Holds(word, folded, true); });
}

bool ListMatcher::MatchesNumbers(std::int64_t time, bool timeKnown, std::int64_t size, bool sizeKnown,
                                 std::int64_t setId) const {
  const auto within = [](std::int64_t number, bool known, std::int64_t least, std::int64_t most) {
    if (least == ListFilter::kLeast && most == ListFilter::kMost) return true;
    return known && number >= least && number <= most;
  };
  return within(time, timeKnown, m_filter.from, m_filter.to) &&
         within(size, sizeKnown, m_filter.leastSize, m_filter.mostSize) &&
         (!m_filter.setId || *m_filter.setId == setId);
}

}  // namespace kxrestore::controls
