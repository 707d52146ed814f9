#include "controls/hash_index.h"

namespace kxrestore::controls {

void HashIndex::Place(std::vector<Slot>& slots, Slot slot) {
  const std::size_t mask = slots.size() - 1;
  std::size_t at = slot.hash & mask;
  while (slots[at].number != 0) at = (at + 1) & mask;
  slots[at] = slot;
}

void HashIndex::Grow() {
  std::vector<Slot> slots(m_slots.empty() ? 16 : m_slots.size() * 2);
  for (const Slot& slot : m_slots) {
    if (slot.number != 0) Place(slots, slot);
  }
  m_slots.swap(slots);
}

void HashIndex::Insert(std::uint32_t hash, std::uint32_t number) {
  if (m_used >= m_slots.size() / 4 * 3) Grow();
  Place(m_slots, {hash, number});
  ++m_used;
}

void HashIndex::Erase(std::uint32_t hash, std::uint32_t number) {
  if (m_slots.empty()) return;
  std::size_t hole = hash & Mask();
  while (m_slots[hole].number != number) {
    if (m_slots[hole].number == 0) return;
    hole = (hole + 1) & Mask();
  }
  // Close the gap: a later slot of the same run moves up unless that would put it before its own place.
  for (std::size_t at = (hole + 1) & Mask(); m_slots[at].number != 0; at = (at + 1) & Mask()) {
    const std::size_t home = m_slots[at].hash & Mask();
    if (((at - home) & Mask()) < ((at - hole) & Mask())) continue;
    m_slots[hole] = m_slots[at];
    hole = at;
  }
  m_slots[hole] = {};
  --m_used;
}

}  // namespace kxrestore::controls
