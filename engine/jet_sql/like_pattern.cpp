#include "engine/jet_sql/like_pattern.h"

#include <algorithm>
#include <cstring>

#include "base/text.h"

namespace kxrestore::engine::jet_sql {

LikePattern::LikePattern(std::string_view mask) {
  const std::string folded = FoldCase(mask);
  if (folded.find_first_of("?#[") == std::string::npos) {
    m_simple = true;
    for (std::size_t start = 0; start <= folded.size();) {
      const std::size_t star = std::min(folded.find('*', start), folded.size());
      m_pieces.push_back(folded.substr(start, star - start));
      start = star + 1;
    }
    ChooseNeeded();
    return;
  }
  for (std::size_t position = 0; position < folded.size();) {
    const char32_t character = NextCharacter(folded, position);
    switch (character) {
      case '*':
        if (m_elements.empty() || m_elements.back().kind != Kind::kAnyRun) {
          m_elements.push_back({Kind::kAnyRun, 0, false, {}});
        }
        break;
      case '?':
        m_elements.push_back({Kind::kAnyOne, 0, false, {}});
        break;
      case '#':
        m_elements.push_back({Kind::kDigit, 0, false, {}});
        break;
      case '[':
        position = ReadList(folded, position);
        break;
      default:
        m_elements.push_back({Kind::kLiteral, character, false, {}});
    }
  }
}

// Most texts that do not match lack the rarest letter of the mask, and looking for one byte is the quickest
// test that there is. K and S are left out: characters beyond ASCII fold to them.
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

// `position` is behind the bracket; returns the position behind the list.
std::size_t LikePattern::ReadList(std::string_view folded, std::size_t position) {
  Element element{Kind::kList, 0, false, {}};
  std::size_t end = folded.find(']', position);
  if (end == std::string_view::npos) {
    m_elements.push_back({Kind::kLiteral, '[', false, {}});
    return position;
  }
  if (end == position) return end + 1;  // an empty list matches no character at all
  if (folded[position] == '!' && end > position + 1) {
    element.negated = true;
    ++position;
  }
  const std::string_view list = folded.substr(0, end);
  while (position < end) {
    Range range{};
    range.first = range.last = NextCharacter(list, position);
    if (position + 1 < end && list[position] == '-') {
      ++position;
      range.last = NextCharacter(list, position);
      if (range.last < range.first) std::swap(range.first, range.last);
    }
    element.ranges.push_back(range);
  }
  m_elements.push_back(std::move(element));
  return end + 1;
}

bool LikePattern::Matches(std::string_view text) const {
  if (m_needed != '\0' && !HoldsNeeded(text)) return false;
  m_folded.clear();
  AppendFolded(m_folded, text);
  return m_simple ? MatchesPieces(m_folded) : MatchesGeneral(m_folded);
}

// The first piece stands at the start, the last at the end, the others anywhere between in their order.
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

bool LikePattern::MatchesOne(const Element& element, char32_t character) {
  switch (element.kind) {
    case Kind::kLiteral:
      return character == element.character;
    case Kind::kAnyOne:
      return true;
    case Kind::kDigit:
      return character >= '0' && character <= '9';
    case Kind::kList:
      return element.negated !=
             std::any_of(element.ranges.begin(), element.ranges.end(), [character](const Range& range) {
               return character >= range.first && character <= range.last;
             });
    case Kind::kAnyRun:
      break;
  }
  return false;
}

// Only the last * is ever taken back: what an earlier one matched can only be shorter, never better.
bool LikePattern::MatchesGeneral(std::string_view folded) const {
  constexpr std::size_t kNone = static_cast<std::size_t>(-1);
  std::size_t position = 0, element = 0;
  std::size_t runElement = kNone, runPosition = 0;
  while (position < folded.size()) {
    if (element < m_elements.size() && m_elements[element].kind == Kind::kAnyRun) {
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
  while (element < m_elements.size() && m_elements[element].kind == Kind::kAnyRun) ++element;
  return element == m_elements.size();
}

}  // namespace kxrestore::engine::jet_sql
