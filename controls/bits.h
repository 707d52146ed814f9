// A Boolean for each of many entries, eight in a byte.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace kxrestore::controls {

class Bits {
 public:
  std::size_t Size() const { return m_size; }
  bool operator[](std::size_t place) const { return (m_words[place / kWord] >> (place % kWord) & 1) != 0; }

  void Append(bool value) {
    if (m_size % kWord == 0) m_words.push_back(0);
    ++m_size;
    Set(m_size - 1, value);
  }
  void Set(std::size_t place, bool value) {
    const std::uint64_t bit = std::uint64_t{1} << (place % kWord);
    if (value) {
      m_words[place / kWord] |= bit;
    } else {
      m_words[place / kWord] &= ~bit;
    }
  }
  // Sets the size, and every bit to `value`.
  void Assign(std::size_t size, bool value) {
    m_size = size;
    m_words.assign((size + kWord - 1) / kWord, value ? ~std::uint64_t{0} : 0);
    if (value && size % kWord != 0) m_words.back() >>= kWord - size % kWord;
  }
  void Clear() { Assign(0, false); }

  std::size_t Count() const {
    std::size_t count = 0;
    for (const std::uint64_t word : m_words) count += static_cast<std::size_t>(std::popcount(word));
    return count;
  }
  // Calls `call` with the place of every set bit, in order. Skips eight empty bytes at a time.
  template <class Call>
  void ForEach(Call&& call) const {
    for (std::size_t at = 0; at < m_words.size(); ++at) {
      for (std::uint64_t word = m_words[at]; word != 0; word &= word - 1) {
        call(at * kWord + static_cast<std::size_t>(std::countr_zero(word)));
      }
    }
  }

  std::size_t MemoryUsed() const { return m_words.capacity() * sizeof m_words[0]; }

 private:
  static constexpr std::size_t kWord = 64;
  std::vector<std::uint64_t> m_words;
  std::size_t m_size = 0;
};

}  // namespace kxrestore::controls
