#include "controls/auto_select.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <unordered_map>
#include <vector>

#include "controls/blocks.h"
#include "controls/errors.h"
#include "controls/text_arena.h"
#include "controls/text_pool.h"

namespace kxrestore::controls {

struct AutoSelect::Store {
  enum Flag : std::uint8_t { kSizeKnown = 1, kGroup = 2, kSharedNames = 4 };

  struct Record {
    const char* names;  // the shown name, then the stored one; where one ends the other, the longer of them
    std::int64_t size, time, setId;
    std::uint32_t nameLength, storedLength;
    std::uint32_t extension, setName, date;  // numbers in `pool`
    std::uint8_t flags;
  };

  std::size_t Count() const { return records.Size(); }
  void Add(const Entry& entry, bool ticked);
  Entry At(std::size_t number) const;
  bool IsGroup(std::size_t number) const { return (records[number - 1].flags & kGroup) != 0; }

  struct Group {
    std::size_t number = 0, members = 0, ticked = 0;
  };
  // The group's own tick says whether all of its members are ticked. Returns the group when its tick changed.
  std::size_t Tick(std::size_t number, bool ticked);

  Blocks<Record, 10> records;
  std::vector<bool> ticks;
  TextArena texts;
  TextPool pool;
  std::unordered_map<std::int64_t, Group> groups;  // of file types, by their number
};

void AutoSelect::Store::Add(const Entry& entry, bool ticked) {
  constexpr std::size_t kLongest = std::numeric_limits<std::uint32_t>::max();
  if (std::max(entry.name.size(), entry.storedName.size()) > kLongest) ThrowInvalidPropertyValue();

  const std::string_view longer = std::max(entry.name, entry.storedName,
                                           [](auto left, auto right) { return left.size() < right.size(); });
  const bool shared = longer.ends_with(entry.name) && longer.ends_with(entry.storedName);
  char* const names = texts.Allocate(shared ? longer.size() : entry.name.size() + entry.storedName.size());
  const auto put = [](char* place, std::string_view text) {
    if (!text.empty()) std::memcpy(place, text.data(), text.size());
  };
  put(names, shared ? longer : entry.name);
  if (!shared) put(names + entry.name.size(), entry.storedName);

  Record record{};
  record.names = names;
  record.size = entry.size;
  record.time = entry.time;
  record.nameLength = static_cast<std::uint32_t>(entry.name.size());
  record.storedLength = static_cast<std::uint32_t>(entry.storedName.size());
  record.extension = pool.Number(entry.extension, texts);
  record.setName = pool.Number(entry.setName, texts);
  record.date = pool.Number(entry.date, texts);
  record.setId = entry.setId;
  record.flags = static_cast<std::uint8_t>((entry.sizeKnown ? kSizeKnown : 0) | (entry.isGroup ? kGroup : 0) |
                                           (shared ? kSharedNames : 0));
  ticks.push_back(false);
  records.Append(record);
  if (entry.isGroup) {
    groups[entry.setId].number = Count();
  } else if (const auto group = groups.find(entry.setId); group != groups.end()) {
    ++group->second.members;
  }
  if (ticked) Tick(Count(), true);
}

AutoSelect::Entry AutoSelect::Store::At(std::size_t number) const {
  const Record& record = records[number - 1];
  Entry entry;
  if ((record.flags & kSharedNames) != 0) {
    const char* const end = record.names + std::max(record.nameLength, record.storedLength);
    entry.name = {end - record.nameLength, record.nameLength};
    entry.storedName = {end - record.storedLength, record.storedLength};
  } else {
    entry.name = {record.names, record.nameLength};
    entry.storedName = {record.names + record.nameLength, record.storedLength};
  }
  entry.size = record.size;
  entry.sizeKnown = (record.flags & kSizeKnown) != 0;
  entry.extension = pool.Text(record.extension);
  entry.setId = record.setId;
  entry.setName = pool.Text(record.setName);
  entry.time = record.time;
  entry.date = pool.Text(record.date);
  entry.isGroup = (record.flags & kGroup) != 0;
  return entry;
}

std::size_t AutoSelect::Store::Tick(std::size_t number, bool ticked) {
  if (ticks[number - 1] == ticked) return 0;
  ticks[number - 1] = ticked;
  if (groups.empty()) return 0;
  const auto found = groups.find(records[number - 1].setId);
  if (found == groups.end() || IsGroup(number)) return 0;
  Group& group = found->second;
  group.ticked = ticked ? group.ticked + 1 : group.ticked - 1;
  const bool whole = group.ticked == group.members;
  if (ticks[group.number - 1] == whole) return 0;
  ticks[group.number - 1] = whole;
  return group.number;
}

AutoSelect::AutoSelect(std::string name, Container* container, Style style)
    : Control(Kind::kAutoSelect, std::move(name), container),
      m_style(style),
      m_store(std::make_unique<Store>()) {}

AutoSelect::~AutoSelect() {
  AttachPeer(nullptr);
}  // a peer reads the entries as long as it lives

void AutoSelect::Clear() {
  m_current = 0;
  m_store = std::make_unique<Store>();
  if (List() != nullptr) List()->Cleared();
}

std::size_t AutoSelect::Add(const Entry& entry, bool ticked) {
  m_store->Add(entry, ticked);
  const std::size_t count = m_store->Count();
  if (List() != nullptr) List()->EntriesAdded(count);
  return count;
}

std::size_t AutoSelect::Count() const {
  return m_store->Count();
}

void AutoSelect::CheckNumber(std::size_t number) const {
  if (number < 1 || number > m_store->Count()) ThrowSubscriptOutOfRange();
}

void AutoSelect::SetCurrent(std::size_t number) {
  CheckNumber(number);
  m_current = number;
}

std::int16_t AutoSelect::SetId() const {
  const std::int64_t setId = At(m_current).setId;
  if (setId == kNoSetId) ThrowTypeMismatch();
  if (setId < std::numeric_limits<std::int16_t>::min() || setId > std::numeric_limits<std::int16_t>::max()) {
    ThrowOverflow();
  }
  return static_cast<std::int16_t>(setId);
}

AutoSelect::Entry AutoSelect::At(std::size_t number) const {
  CheckNumber(number);
  return m_store->At(number);
}

bool AutoSelect::TickedAt(std::size_t number) const {
  CheckNumber(number);
  return m_store->ticks[number - 1];
}

void AutoSelect::SetTicked(std::size_t number, bool ticked) {
  CheckNumber(number);
  if (!m_store->IsGroup(number)) {
    const std::size_t group = m_store->Tick(number, ticked);
    if (List() != nullptr) List()->TicksChanged(number, number);
    if (List() != nullptr && group != 0) List()->TicksChanged(group, group);
    return;
  }
  m_store->Tick(number, ticked);
  const std::int64_t group = m_store->records[number - 1].setId;
  for (std::size_t member = 1; member <= m_store->Count(); ++member) {
    if (member != number && m_store->records[member - 1].setId == group) m_store->Tick(member, ticked);
  }
  if (List() != nullptr) List()->TicksChanged(1, m_store->Count());
}

void AutoSelect::TickAll(bool ticked) {
  m_store->ticks.assign(m_store->ticks.size(), ticked);
  for (auto& [number, group] : m_store->groups) group.ticked = ticked ? group.members : 0;
  if (List() != nullptr && m_store->Count() != 0) List()->TicksChanged(1, m_store->Count());
}

std::string AutoSelect::TickedTypes() const {
  std::string types;
  for (std::size_t number = 1; number <= m_store->Count(); ++number) {
    if (!m_store->ticks[number - 1] || m_store->IsGroup(number)) continue;
    const Entry type = m_store->At(number);
    types.append(type.storedName.empty() ? type.name : type.storedName).append(";");
  }
  return types;
}

std::size_t AutoSelect::MemoryUsed() const {
  return sizeof *m_store + m_store->records.MemoryUsed() + m_store->ticks.capacity() / 8 +
         m_store->texts.MemoryUsed() + m_store->pool.MemoryUsed();
}

void AutoSelect::SetSize(std::size_t number, std::int64_t size, bool known) {
  CheckNumber(number);
  auto& record = m_store->records[number - 1];
  record.size = size;
  record.flags = static_cast<std::uint8_t>(known ? record.flags | Store::kSizeKnown
                                                 : record.flags & ~unsigned{Store::kSizeKnown});
  if (List() != nullptr) List()->TicksChanged(number, number);
}

void AutoSelect::UserTick(std::size_t number, bool ticked) {
  if (number < 1 || number > m_store->Count() || !AcceptsUser()) return;
  SetTicked(number, ticked);
  if (TickChange) TickChange(number);
}

}  // namespace kxrestore::controls
