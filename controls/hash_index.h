// Finds numbers by the hash of a text. The texts are stored elsewhere, and the caller compares them. Open
// addressing, eight bytes a slot; the hash is stored with the number, so neither growing nor most misses
// access a text.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace kxrestore::controls {

class HashIndex {
 public:
  static std::uint32_t HashOf(std::string_view text) {
    const std::uint64_t hash = std::hash<std::string_view>{}(text);
    return static_cast<std::uint32_t>(hash ^ (hash >> 32));
  }

  // The number with this hash for which `equal(number)` holds, or 0.
  template <std::predicate<std::uint32_t> Equal>
  std::uint32_t Find(std::uint32_t hash, Equal equal) const {
    if (m_slots.empty()) return 0;
    for (std::size_t at = hash & Mask();; at = (at + 1) & Mask()) {
      const Slot& slot = m_slots[at];
      if (slot.number == 0) return 0;
      if (slot.hash == hash && equal(slot.number)) return slot.number;
    }
  }

  void Insert(std::uint32_t hash, std::uint32_t number);  // `number` is above 0 and not yet contained
  void MakeRoom();                                        // the next Insert cannot fail

  std::size_t MemoryUsed() const { return m_slots.capacity() * sizeof(Slot); }

 private:
  struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t number = 0;  // 0 marks a free slot
  };

  std::size_t Mask() const { return m_slots.size() - 1; }
  static void Place(std::vector<Slot>& slots, Slot slot);

  std::vector<Slot> m_slots;  // a power of two of them
  std::size_t m_used = 0;
};

}  // namespace kxrestore::controls
