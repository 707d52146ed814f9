// Storage for many short texts, freed all at once with the arena. Texts never move.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace kxrestore::controls {

class TextArena {
 public:
  char* Allocate(std::size_t size);
  std::string_view Copy(std::string_view text);
  std::size_t MemoryUsed() const { return m_memory + m_blocks.capacity() * sizeof(m_blocks[0]); }

 private:
  char* NewBlock(std::size_t size);

  std::vector<std::unique_ptr<char[]>> m_blocks;
  char* m_next = nullptr;
  std::size_t m_left = 0;
  std::size_t m_memory = 0;
};

}  // namespace kxrestore::controls
