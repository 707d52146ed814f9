#include "controls/tree_store.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "base/text.h"
#include "controls/errors.h"

namespace kxrestore::controls {

namespace {

constexpr std::size_t kMaxOrdered = 200'000;  // children; sorting more would make a click slow

}  // namespace

namespace {

constexpr char kSeparator = '\\';

// Lengths take seven bits a byte, the lowest first; all bytes but the last have the top bit set.
constexpr std::size_t kMaxLengthBytes = 5;

char* PutLength(char* place, std::size_t length) {
  for (; length >= 0x80; length >>= 7) *place++ = static_cast<char>(length | 0x80);
  *place++ = static_cast<char>(length);
  return place;
}

std::size_t TakeLength(const char*& place) {
  std::size_t length = 0;
  for (unsigned shift = 0;; shift += 7) {
    const auto byte = static_cast<unsigned char>(*place++);
    length |= static_cast<std::size_t>(byte & 0x7F) << shift;
    if (byte < 0x80) return length;
  }
}

// Keys are hashed byte by byte (FNV-1a), so that the hash of a folder's key continues that of its parent's.
constexpr std::uint64_t kEmptyHash = 0xCBF29CE484222325;

std::uint64_t Hashed(std::uint64_t hash, std::string_view text) {
  for (const char byte : text) hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
  return hash;
}

std::uint64_t HashedFolder(std::uint64_t hash, std::string_view text) {
  return Hashed(Hashed(hash, text), {&kSeparator, 1});
}

std::uint32_t IndexHash(std::uint64_t hash) {
  return static_cast<std::uint32_t>(hash ^ (hash >> 32));
}

}  // namespace

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

TreeView::Store::Texts TreeView::Store::TextsOf(const Record& record) {
  const char* place = record.texts;
  const std::size_t tag = TakeLength(place), text = TakeLength(place);
  const std::size_t key = (record.flags & kHasKey) != 0 ? TakeLength(place) : 0;
  const char* const tagEnd = place + tag;
  const char* const textEnd = (record.flags & kTextEndsTag) != 0 ? tagEnd : tagEnd + text;
  return {{place, tag}, {textEnd - text, text}, {textEnd, key}};
}

// The lengths of the tag, of the text and of the key if there is one; the tag; the text unless it ends the
// tag; the key.
void TreeView::Store::SetTexts(Record& record, const Texts& texts) {
  const auto& [tag, text, key] = texts;
  constexpr std::size_t kMaxLength = std::numeric_limits<std::int32_t>::max();
  if (std::max({tag.size(), text.size(), key.size()}) > kMaxLength) ThrowInvalidPropertyValue();

  const bool textEndsTag = tag.ends_with(text);
  const std::size_t ownText = textEndsTag ? 0 : text.size();
  char lengths[3 * kMaxLengthBytes];
  char* lengthsEnd = PutLength(PutLength(lengths, tag.size()), text.size());
  if (!key.empty()) lengthsEnd = PutLength(lengthsEnd, key.size());

  const auto lengthsSize = static_cast<std::size_t>(lengthsEnd - lengths);
  char* place = m_texts.Allocate(lengthsSize + tag.size() + ownText + key.size());
  record.texts = place;
  const auto put = [&place](const char* bytes, std::size_t size) {
    if (size != 0) std::memcpy(place, bytes, size);
    place += size;
  };
  put(lengths, lengthsSize);
  put(tag.data(), tag.size());
  put(text.data(), ownText);
  put(key.data(), key.size());

  // A stored key replaces one built from the parent's.
  const unsigned keyed = key.empty() ? record.flags & kFolder : unsigned{kHasKey};
  const unsigned kept = record.flags & ~(kTextEndsTag | kHasKey | kFolder | kTagged);
  record.flags = static_cast<std::uint16_t>(kept | keyed | (textEndsTag ? kTextEndsTag : 0) |
                                            (tag.empty() ? 0 : kTagged));
}

void TreeView::Store::SetTag(std::uint32_t node, std::string_view tag) {
  Record& record = m_records[node];
  const Texts texts = TextsOf(record);
  CountOut(record);
  SetTexts(record, {tag, texts.text, texts.key});
  CountIn(record);
}

// A folder keeps its key, which is stored from now on.
void TreeView::Store::SetText(std::uint32_t node, std::string_view text) {
  Record& record = m_records[node];
  SetTexts(record, {TextsOf(record).tag, text, Key(node)});
}

std::string TreeView::Store::Key(std::uint32_t node) const {
  std::uint32_t top = node;
  std::size_t length = 0;
  for (; (m_records[top].flags & kFolder) != 0; top = m_records[top].parent) {
    length += TextsOf(m_records[top]).text.size() + 1;
  }
  std::string key(OwnKey(top));
  key.resize(key.size() + length);
  for (auto end = key.end(); node != top; node = m_records[node].parent) {
    const std::string_view text = TextsOf(m_records[node]).text;
    *--end = kSeparator;
    end = std::copy_backward(text.begin(), text.end(), end);
  }
  return key;
}

bool TreeView::Store::KeyIs(std::uint32_t node, std::string_view key) const {
  for (; (m_records[node].flags & kFolder) != 0; node = m_records[node].parent) {
    const std::string_view text = TextsOf(m_records[node]).text;
    if (!key.ends_with(kSeparator)) return false;
    key.remove_suffix(1);
    if (!key.ends_with(text)) return false;
    key.remove_suffix(text.size());
  }
  return OwnKey(node) == key;
}

// Climbs to the nearest ancestor with a known hash, then descends.
std::uint64_t TreeView::Store::KeyHash(std::uint32_t node) {
  m_unhashed.clear();
  for (; node != m_hashedFolder && (m_records[node].flags & kFolder) != 0; node = m_records[node].parent) {
    m_unhashed.push_back(node);
  }
  std::uint64_t hash = node != 0 && node == m_hashedFolder ? m_folderHash : Hashed(kEmptyHash, OwnKey(node));
  for (; !m_unhashed.empty(); m_unhashed.pop_back()) {
    hash = HashedFolder(hash, TextsOf(m_records[m_unhashed.back()]).text);
  }
  return hash;
}

std::uint32_t TreeView::Store::Find(std::string_view key) const {
  return m_keys.Find(IndexHash(Hashed(kEmptyHash, key)),
                     [&](std::uint32_t node) { return KeyIs(node, key); });
}

std::uint32_t TreeView::Store::Append(std::uint32_t parent, const Texts& texts, int image, Flag kind) {
  if (m_records.Size() > std::numeric_limits<std::int32_t>::max())
    throw Error(error_number::kOutOfMemory, "Out of memory");
  Record record{};
  record.parent = parent;
  record.previous = m_records[parent].lastChild;
  record.image = CheckedImage(image);
  record.flags = kind;
  SetTexts(record, texts);
  CountIn(record);
  const auto node = static_cast<std::uint32_t>(m_records.Size());
  m_records.Append(record);

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

std::uint32_t TreeView::Store::Add(std::uint32_t parent, std::string_view key, std::string_view text,
                                   int image, std::string_view tag) {
  if (parent != 0) At(parent);
  if (key.empty()) return Append(parent, {tag, text, key}, image, kNoFlag);
  if (Find(key) != 0) ThrowKeyNotUnique();
  m_keys.MakeRoom();
  const std::uint32_t node = Append(parent, {tag, text, key}, image, kHasKey);
  m_keys.Insert(IndexHash(Hashed(kEmptyHash, key)), node);
  return node;
}

std::uint32_t TreeView::Store::FindOrAddFolder(std::uint32_t parent, std::string_view text, int image) {
  if (parent != 0) At(parent);
  const std::uint64_t hash = HashedFolder(KeyHash(parent), text);
  std::uint32_t node = m_keys.Find(IndexHash(hash), [&](std::uint32_t candidate) {
    const Record& record = m_records[candidate];
    if ((record.flags & kFolder) != 0 && record.parent == parent && TextsOf(record).text == text) return true;
    return KeyIs(candidate, Key(parent).append(text).append(1, kSeparator));
  });
  if (node == 0) {
    m_keys.MakeRoom();
    node = Append(parent, {{}, text, {}}, image, kFolder);
    m_keys.Insert(IndexHash(hash), node);
  }
  m_hashedFolder = node;
  m_folderHash = hash;
  return node;
}

void TreeView::Store::Remove(std::uint32_t node) {
  Record& top = At(node);
  Record& above = m_records[top.parent];
  (top.previous != 0 ? m_records[top.previous].next : above.firstChild) = top.next;
  (top.next != 0 ? m_records[top.next].previous : above.lastChild) = top.previous;

  // Removes children first and climbs back through the parents, so depth is not limited.
  std::uint32_t current = node;
  for (;;) {
    while (m_records[current].firstChild != 0) current = m_records[current].firstChild;
    Record& record = m_records[current];
    CountOut(record);
    record.flags = kRemoved;
    --m_count;
    if (current == node) return;
    m_records[record.parent].firstChild = record.next;
    current = record.next != 0 ? record.next : record.parent;
  }
}

void TreeView::Store::OrderChildren(std::uint32_t parent, const SortKey& sortKey) {
  struct Child {
    std::uint32_t node;
    bool isFile;
    std::size_t key, size;  // range of `keys`
  };
  std::vector<Child> children;
  std::string keys;
  for (std::uint32_t node = m_records[parent].firstChild; node != 0; node = m_records[node].next) {
    if (children.size() == kMaxOrdered) return;
    const std::size_t start = keys.size();
    sortKey(keys, TextsOf(m_records[node]).text);
    children.push_back({node, m_records[node].firstChild == 0, start, keys.size() - start});
  }
  std::stable_sort(children.begin(), children.end(), [&](const Child& left, const Child& right) {
    if (left.isFile != right.isFile) return right.isFile;
    return std::string_view(keys).substr(left.key, left.size) <
           std::string_view(keys).substr(right.key, right.size);
  });
  std::uint32_t previous = 0;
  for (const auto& [child, isFile, key, size] : children) {
    m_records[child].previous = previous;
    (previous != 0 ? m_records[previous].next : m_records[parent].firstChild) = child;
    previous = child;
  }
  if (previous == 0) return;
  m_records[previous].next = 0;
  m_records[parent].lastChild = previous;
}

std::size_t TreeView::Store::MemoryUsed() const {
  return sizeof *this + m_records.MemoryUsed() + m_texts.MemoryUsed() + m_keys.MemoryUsed();
}

}  // namespace kxrestore::controls
