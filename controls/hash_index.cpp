#include "controls/hash_index.h"

namespace kxrestore::controls {

void HashIndex::Place(std::vector<Slot>& slots, Slot slot) {
  const std::size_t mask = slots.size() - 1;
  std::size_t at = slot.hash & mask;
  while (slots[at].number != 0) at = (at + 1) & mask;
  slots[at] = slot;
}

void HashIndex::MakeRoom() {
  if (m_used < m_slots.size() / 4 * 3) return;
  std::vector<Slot> slots(m_slots.empty() ? 16 : m_slots.size() * 2);
  for (const Slot& slot : m_slots) {
    if (slot.number != 0) Place(slots, slot);
  }
  m_slots.swap(slots);
}

void HashIndex::Insert(std::uint32_t hash, std::uint32_t number) {
  MakeRoom();
  Place(m_slots, {hash, number});
  ++m_used;
}

}  // namespace kxrestore::controls
