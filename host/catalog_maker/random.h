// A small generator of numbers that gives the same sequence for a seed on every machine and with every
// compiler, which the standard library's distributions do not promise.
#pragma once

#include <cstdint>

namespace kxrestore::sample {

class Random {
 public:
  explicit Random(std::uint64_t seed) : m_state(seed) {}

  std::uint64_t Next() {
    m_state += 0x9E3779B97F4A7C15ULL;
    std::uint64_t z = m_state;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return z ^ (z >> 31);
  }

  // 0 to limit - 1; limit is at least 1.
  std::uint32_t Below(std::uint32_t limit) {
    return static_cast<std::uint32_t>(((Next() >> 32) * limit) >> 32);
  }

  bool OneIn(std::uint32_t count) { return Below(count) == 0; }

 private:
  std::uint64_t m_state;
};

}  // namespace kxrestore::sample
