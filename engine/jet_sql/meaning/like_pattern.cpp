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

// Most texts are rejected early: one that matches contains the rarest letter of the mask, and memchr finds
// one byte faster than any other test. K and S are excluded because characters beyond ASCII fold to them.
void LikePattern::ChooseNeeded() {
  constexpr std::string_view kByRarity = "zqjxvywbhgpfum0123456789cldronitae";
  std::size_t rarest = kByRarity.size();
  for (std::size_t piece = 0; piece < m_pieces.size(); ++piece) {
    for (std::size_t at = 0; at < m_pieces[piece].size(); ++at) {
      const std::size_t rank = kByRarity.find(m_pieces[piece][at]);
      if (rank >= rarest) continue;
      rarest = rank;
      m_needed = kByRarity[rank];
      m_neededPiece = piece;
      m_neededAt = at;
    }
  }
}

bool LikePattern::MayMatch(std::string_view text) const {
  if (text.empty()) return false;
  for (const char letter : {m_needed, m_needed >= 'a' ? static_cast<char>(m_needed - 'a' + 'A') : '\0'}) {
    if (letter == '\0') break;
    const char* const begin = text.data();
    const char* const end = begin + text.size();
    for (const char* from = begin; from < end; ++from) {
      from = static_cast<const char*>(std::memchr(from, letter, static_cast<std::size_t>(end - from)));
      if (from == nullptr) break;
      if (MayStandAt(text, static_cast<std::size_t>(from - begin))) return true;
    }
  }
  return false;
}

// Whether the piece of the needed letter can stand where a text has that letter, as far as the text around it
// is ASCII.
bool LikePattern::MayStandAt(std::string_view text, std::size_t needed) const {
  const std::string& piece = m_pieces[m_neededPiece];
  const auto isAscii = [](char character) { return static_cast<unsigned char>(character) < 0x80; };
  const auto isSame = [](char character, char folded) {
    return character == folded || (character >= 'A' && character <= 'Z' && character - 'A' + 'a' == folded);
  };
  for (std::size_t i = 1; i <= m_neededAt; ++i) {
    if (i > needed) return false;
    if (!isAscii(text[needed - i])) break;
    if (!isSame(text[needed - i], piece[m_neededAt - i])) return false;
  }
  for (std::size_t i = 1; m_neededAt + i < piece.size(); ++i) {
    if (needed + i >= text.size()) return false;
    if (!isAscii(text[needed + i])) break;
    if (!isSame(text[needed + i], piece[m_neededAt + i])) return false;
  }
  return true;
}

bool LikePattern::Matches(std::string_view text) const {
  if (m_needed != '\0' && !MayMatch(text)) return false;
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
