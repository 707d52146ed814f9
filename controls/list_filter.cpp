#include "controls/list_filter.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/text.h"

namespace kxrestore::controls {

namespace {

// A table is quicker than comparisons where every byte of a million names is looked at.
constexpr std::array<char, 256> kFolded = [] {
  std::array<char, 256> table{};
  for (int byte = 0; byte < 256; ++byte) {
    table[static_cast<std::size_t>(byte)] = FoldAscii(static_cast<char>(byte));
  }
  return table;
}();

// As std::string_view::find, ignoring the case of ASCII letters in `text`. `piece` is folded.
std::size_t FindIgnoringAsciiCase(std::string_view text, std::string_view piece, std::size_t start) {
  if (piece.size() > text.size()) return std::string_view::npos;
  const std::size_t last = text.size() - piece.size();
  for (std::size_t at = start; at <= last; ++at) {
    std::size_t same = 0;
    while (same < piece.size() && kFolded[static_cast<unsigned char>(text[at + same])] == piece[same]) ++same;
    if (same == piece.size()) return at;
  }
  return std::string_view::npos;
}

// Whether a text contains the pieces one after the other. `find`: as std::string_view::find.
template <class Find>
bool ContainsInOrder(std::string_view text, const std::vector<std::string>& pieces, Find find) {
  std::size_t at = 0;
  for (const std::string& piece : pieces) {
    at = find(text, piece, at);
    if (at == std::string_view::npos) return false;
    at += piece.size();
  }
  return true;
}

}  // namespace

bool ListFilter::IsOpen() const {
  return *this == ListFilter() || (words.find_first_not_of(" *") == std::string::npos && from == kMin &&
                                   to == kMax && minSize == kMin && maxSize == kMax && !setId);
}

ListMatcher::ListMatcher(ListFilter filter) : m_filter(std::move(filter)) {
  ForEachPiece(m_filter.words, ' ', [this](std::string_view text) {
    Word word;
    ForEachPiece(text, '*', [&](std::string_view piece) { word.pieces.push_back(FoldCase(piece)); });
    if (word.pieces.empty()) return;
    word.ascii = std::all_of(word.pieces.begin(), word.pieces.end(), IsAscii);
    m_words.push_back(std::move(word));
  });
}

bool ListMatcher::MatchesName(std::string_view name, bool ascii) const {
  if (ascii) {
    return std::all_of(m_words.begin(), m_words.end(), [name](const Word& word) {
      return word.ascii && ContainsInOrder(name, word.pieces, FindIgnoringAsciiCase);
    });
  }
  const std::string folded = FoldCase(name);
  return std::all_of(m_words.begin(), m_words.end(), [&folded](const Word& word) {
    return ContainsInOrder(
        folded, word.pieces,
        [](std::string_view text, std::string_view piece, std::size_t at) { return text.find(piece, at); });
  });
}

bool ListMatcher::MatchesNumbers(std::int64_t time, bool timeKnown, std::int64_t size, bool sizeKnown,
                                 std::int64_t setId) const {
  const auto within = [](std::int64_t number, bool known, std::int64_t min, std::int64_t max) {
    if (min == ListFilter::kMin && max == ListFilter::kMax) return true;
    return known && number >= min && number <= max;
  };
  return within(time, timeKnown, m_filter.from, m_filter.to) &&
         within(size, sizeKnown, m_filter.minSize, m_filter.maxSize) &&
         (!m_filter.setId || *m_filter.setId == setId);
}

}  // namespace kxrestore::controls
