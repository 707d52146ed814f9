#include "controls/text_pool.h"

namespace kxrestore::controls {

std::uint32_t TextPool::Number(std::string_view text, TextArena& arena) {
  if (text.empty()) return 0;
  if (Text(m_last) == text) return m_last;
  const std::uint32_t hash = HashIndex::HashOf(text);
  std::uint32_t number = m_index.Find(hash, [&](std::uint32_t candidate) { return Text(candidate) == text; });
  if (number == 0) {
    const std::string_view copy = arena.Copy(text);
    m_pieces.Append({copy.data(), copy.size()});
    number = static_cast<std::uint32_t>(m_pieces.Size());
    m_index.Insert(hash, number);
  }
  m_last = number;
  return number;
}

}  // namespace kxrestore::controls
