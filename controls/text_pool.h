// Interned texts, identified by number from 1; 0 is the empty text.
#pragma once

#include <cstdint>
#include <string_view>

#include "controls/blocks.h"
#include "controls/hash_index.h"
#include "controls/text_arena.h"

namespace kxrestore::controls {

class TextPool {
 public:
  // The number of the text; a new text is copied into `arena`.
  std::uint32_t Number(std::string_view text, TextArena& arena);
  std::string_view Text(std::uint32_t number) const {
    if (number == 0) return {};
    const Piece& piece = m_pieces[number - 1];
    return {piece.text, piece.length};
  }
  std::size_t MemoryUsed() const { return m_pieces.MemoryUsed() + m_index.MemoryUsed(); }

 private:
  struct Piece {
    const char* text;
    std::size_t length;
  };

  Blocks<Piece, 8> m_pieces;
  HashIndex m_index;
  std::uint32_t m_last = 0;  // consecutive rows mostly share their texts
};

}  // namespace kxrestore::controls
