#include "engine/jet_sql/meaning/like_pattern.h"

#include <algorithm>
#include <cstring>

#include "base/text.h"

namespace kxrestore::engine::jet_sql {

using Kind = MaskElement::Kind;

LikePattern::LikePattern(std::string_view mask) : m_elements(ParseMask(FoldCase(mask))) {
  m_simple = std::all_of(m_elements.begin(), m_elements.end(), [](const MaskElement& element) {
    return element.kind == Kind::kLiteral || element.IsRun();
  });
  if (!m_simple) return;
  m_pieces.emplace_back();
  for (const MaskElement& element : m_elements) {
    if (element.IsRun()) {
      m_pieces.emplace_back();
    } else {
      AppendCharacter(m_pieces.back(), element.character);
    }
  }
  ChooseNeeded();
}

// Rejects most texts early: one that matches must contain the rarest letter of the mask, and memchr finds one
// byte faster than any other test. K and S are excluded because characters beyond ASCII fold to them.
void LikePattern::ChooseNeeded() {
  constexpr std::string_view kByRarity = "zqjxvywbhgpfum0123456789cldronitae";
  std::size_t rarest = kByRarity.size();
  for (const std::string& piece : m_pieces) {
    for (const char character : piece) rarest = std::min(rarest, kByRarity.find(character));
  }
  if (rarest < kByRarity.size()) m_needed = kByRarity[rarest];
}

bool LikePattern::HoldsNeeded(std::string_view text) const {
  if (text.empty()) return false;
  if (std::memchr(text.data(), m_needed, text.size()) != nullptr) return true;
  return m_needed >= 'a' && std::memchr(text.data(), m_needed - 'a' + 'A', text.size()) != nullptr;
}

bool LikePattern::Matches(std::string_view text) const {
  if (m_needed != '\0' && !HoldsNeeded(text)) return false;
  m_folded.clear();
  AppendFolded(m_folded, text);
  return m_simple ? MatchesPieces(m_folded) : MatchesGeneral(m_folded);
}

// The text starts with the first piece, ends with the last, and holds the others in between in their order.
bool LikePattern::MatchesPieces(std::string_view folded) const {
  if (m_pieces.size() == 1) return folded == m_pieces.front();
  const std::string &first = m_pieces.front(), &last = m_pieces.back();
  if (folded.size() < first.size() + last.size() || !folded.starts_with(first) || !folded.ends_with(last)) {
    return false;
  }
  folded = folded.substr(first.size(), folded.size() - first.size() - last.size());
  for (std::size_t i = 1; i + 1 < m_pieces.size(); ++i) {
    const std::size_t found = folded.find(m_pieces[i]);
    if (found == std::string_view::npos) return false;
    folded.remove_prefix(found + m_pieces[i].size());
  }
  return true;
}

bool LikePattern::MatchesOne(const MaskElement& element, char32_t character) {
  switch (element.kind) {
    case Kind::kLiteral:
      return character == element.character;
    case Kind::kAnyOne:
      return true;
    case Kind::kDigit:
      return character >= '0' && character <= '9';
    case Kind::kList:
      return element.negated != std::any_of(element.ranges.begin(), element.ranges.end(),
                                            [character](const MaskElement::Range& range) {
                                              return character >= range.first && character <= range.last;
                                            });
    case Kind::kAnyRun:
      break;
  }
  return false;
}

// Backtracks to the last * only: extending an earlier one never leads to a match that the last one misses.
bool LikePattern::MatchesGeneral(std::string_view folded) const {
  constexpr std::size_t kNone = static_cast<std::size_t>(-1);
  std::size_t position = 0, element = 0;
  std::size_t runElement = kNone, runPosition = 0;
  while (position < folded.size()) {
    if (element < m_elements.size() && m_elements[element].IsRun()) {
      runElement = ++element;
      runPosition = position;
      continue;
    }
    std::size_t next = position;
    if (element < m_elements.size() && MatchesOne(m_elements[element], NextCharacter(folded, next))) {
      ++element;
      position = next;
      continue;
    }
    if (runElement == kNone) return false;
    NextCharacter(folded, runPosition);
    position = runPosition;
    element = runElement;
  }
  while (element < m_elements.size() && m_elements[element].IsRun()) ++element;
  return element == m_elements.size();
}

}  // namespace kxrestore::engine::jet_sql
