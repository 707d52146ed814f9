#include "controls/text_arena.h"

#include <cstring>

namespace kxrestore::controls {

namespace {
constexpr std::size_t kBlockSize = 64 * 1024;
}

char* TextArena::NewBlock(std::size_t size) {
  m_blocks.push_back(std::make_unique_for_overwrite<char[]>(size));
  m_memory += size;
  return m_blocks.back().get();
}

char* TextArena::Allocate(std::size_t size) {
  if (size > m_left) {
    // A long text gets its own block, so that the rest of the current one is not wasted.
    if (size > kBlockSize / 8) return NewBlock(size);
    m_next = NewBlock(kBlockSize);
    m_left = kBlockSize;
  }
  char* const place = m_next;
  m_next += size;
  m_left -= size;
  return place;
}

std::string_view TextArena::Copy(std::string_view text) {
  if (text.empty()) return {};
  char* const place = Allocate(text.size());
  std::memcpy(place, text.data(), text.size());
  return {place, text.size()};
}

}  // namespace kxrestore::controls
