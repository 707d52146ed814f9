#include "controls/tree_store.h"

#include <cstring>
#include <limits>

#include "controls/errors.h"

namespace kxrestore::controls {

void TreeView::Store::ThrowGone(std::uint32_t node) {
  if (node == 0) ThrowObjectVariableNotSet();
  ThrowElementNotFound();
}

std::int16_t TreeView::Store::CheckedImage(int image) {
  if (image < std::numeric_limits<std::int16_t>::min() || image > std::numeric_limits<std::int16_t>::max()) {
    ThrowInvalidPropertyValue();
  }
  return static_cast<std::int16_t>(image);
}

std::string_view TreeView::Store::Key(const Record& record) {
  if ((record.flags & kHasKey) == 0) return {};
  const char* place = record.texts + record.tagLength;
  if ((record.flags & kTextEndsTag) == 0) place += record.textLength;
  std::uint32_t length = 0;
  std::memcpy(&length, place, sizeof length);
  return {place + sizeof length, length};
}

void TreeView::Store::SetTexts(Record& record, std::string_view tag, std::string_view text,
                               std::string_view key) {
  constexpr std::size_t kLongest = std::numeric_limits<std::int32_t>::max();
  if (tag.size() > kLongest || text.size() > kLongest || key.size() > kLongest) ThrowInvalidPropertyValue();

  const bool textEndsTag = tag.ends_with(text);
  const auto keyLength = static_cast<std::uint32_t>(key.size());
  char* const texts = m_texts.Allocate(tag.size() + (textEndsTag ? 0 : text.size()) +
                                       (key.empty() ? 0 : sizeof keyLength + key.size()));
  char* place = texts;
  const auto put = [&place](const void* bytes, std::size_t size) {
    if (size != 0) std::memcpy(place, bytes, size);
    place += size;
  };
  put(tag.data(), tag.size());
  if (!textEndsTag) put(text.data(), text.size());
  if (!key.empty()) {
    put(&keyLength, sizeof keyLength);
    put(key.data(), key.size());
  }

  record.texts = texts;
  record.tagLength = static_cast<std::uint32_t>(tag.size());
  record.textLength = static_cast<std::uint32_t>(text.size());
  record.flags = static_cast<std::uint8_t>((record.flags & ~(kTextEndsTag | kHasKey)) |
                                           (textEndsTag ? kTextEndsTag : 0) | (key.empty() ? 0 : kHasKey));
}

std::uint32_t TreeView::Store::Find(std::string_view key, std::uint32_t hash) const {
  return m_keys.Find(hash, [&](std::uint32_t node) { return Key(m_records[node]) == key; });
}

std::uint32_t TreeView::Store::Add(std::uint32_t parent, std::string_view key, std::string_view text,
                                   int image, std::string_view tag) {
  if (m_records.Size() > std::numeric_limits<std::int32_t>::max())
    throw Error(error_number::kOutOfMemory, "Out of memory");
  if (parent != 0) At(parent);
  const std::uint32_t hash = key.empty() ? 0 : HashIndex::HashOf(key);
  if (!key.empty() && Find(key, hash) != 0) ThrowKeyNotUnique();

  Record record{};
  record.parent = parent;
  record.previous = m_records[parent].lastChild;
  record.image = CheckedImage(image);
  SetTexts(record, tag, text, key);
  const auto node = static_cast<std::uint32_t>(m_records.Size());
  m_records.Append(record);
  if (!key.empty()) m_keys.Insert(hash, node);

  Record& above = m_records[parent];
  if (above.lastChild != 0) {
    m_records[above.lastChild].next = node;
  } else {
    above.firstChild = node;
  }
  above.lastChild = node;
  ++m_count;
  return node;
}

void TreeView::Store::Forget(Record& record, std::uint32_t node) {
  if ((record.flags & kHasKey) != 0) m_keys.Erase(HashIndex::HashOf(Key(record)), node);
  record.flags = kRemoved;
  --m_count;
}

void TreeView::Store::Remove(std::uint32_t node) {
  Record& top = At(node);
  Record& above = m_records[top.parent];
  (top.previous != 0 ? m_records[top.previous].next : above.firstChild) = top.next;
  (top.next != 0 ? m_records[top.next].previous : above.lastChild) = top.previous;

  // Children first, each taking the way back through its parent, so that no depth is too deep.
  std::uint32_t current = node;
  for (;;) {
    while (m_records[current].firstChild != 0) current = m_records[current].firstChild;
    Record& record = m_records[current];
    Forget(record, current);
    if (current == node) return;
    m_records[record.parent].firstChild = record.next;
    current = record.next != 0 ? record.next : record.parent;
  }
}

std::size_t TreeView::Store::MemoryUsed() const {
  return sizeof *this + m_records.MemoryUsed() + m_texts.MemoryUsed() + m_keys.MemoryUsed();
}

}  // namespace kxrestore::controls
