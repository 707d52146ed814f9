// A sequence that grows in blocks of 2^kShift elements: elements never move, growing copies nothing, and at
// most one block is spare. Elements are plain data.
#pragma once

#include <cstddef>
#include <memory>
#include <type_traits>
#include <vector>

namespace kxrestore::controls {

template <typename T, unsigned kShift>
class Blocks {
  static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_default_constructible_v<T>);

 public:
  std::size_t Size() const { return m_size; }
  T& operator[](std::size_t index) { return m_blocks[index >> kShift][index & (kLength - 1)]; }
  const T& operator[](std::size_t index) const { return m_blocks[index >> kShift][index & (kLength - 1)]; }

  void Append(const T& element) {
    if ((m_size & (kLength - 1)) == 0 && (m_size >> kShift) == m_blocks.size()) {
      m_blocks.push_back(std::make_unique_for_overwrite<T[]>(kLength));
    }
    (*this)[m_size] = element;
    ++m_size;
  }

  std::size_t MemoryUsed() const {
    return m_blocks.size() * kLength * sizeof(T) + m_blocks.capacity() * sizeof(m_blocks[0]);
  }

 private:
  static constexpr std::size_t kLength = std::size_t{1} << kShift;
  std::vector<std::unique_ptr<T[]>> m_blocks;
  std::size_t m_size = 0;
};

}  // namespace kxrestore::controls
