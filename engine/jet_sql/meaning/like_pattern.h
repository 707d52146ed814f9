// A mask of the Like operator, compiled once and matched against many texts.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/jet_sql/reading/mask.h"

namespace kxrestore::engine::jet_sql {

class LikePattern {
 public:
  explicit LikePattern(std::string_view mask);

  bool Matches(std::string_view text) const;

 private:
  void ChooseNeeded();
  bool MayMatch(std::string_view text) const;
  bool MayStandAt(std::string_view text, std::size_t needed) const;
  bool MatchesPieces(std::string_view folded) const;
  bool MatchesGeneral(std::string_view folded) const;
  static bool MatchesOne(const MaskElement& element, char32_t character);

  std::vector<MaskElement> m_elements;
  bool m_simple;                      // nothing but * and plain characters
  std::vector<std::string> m_pieces;  // the text between the *
  // A letter (in either case) or digit that every match contains, and where: in which piece, at which place.
  char m_needed = '\0';
  std::size_t m_neededPiece = 0, m_neededAt = 0;
  mutable std::string m_folded;  // a buffer that is reused from row to row
};

}  // namespace kxrestore::engine::jet_sql
