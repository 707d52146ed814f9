#include "controls/auto_select_store.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "base/text.h"
#include "controls/errors.h"

namespace kxrestore::controls {

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
  record.flags =
      static_cast<std::uint8_t>((entry.sizeKnown ? kSizeKnown : 0) | (entry.isGroup ? kGroup : 0) |
                                (shared ? kSharedNames : 0) | (IsAscii(entry.name) ? kAsciiName : 0));
  ticks.Append(false);
  settled.Append(ticked);
  selected.Append(false);
  records.Append(record);
  if (entry.isGroup) {
    groups[entry.setId].number = Count();
  } else {
    if (const auto group = groups.find(entry.setId); group != groups.end()) ++group->second.members;
    ++all.entries;
    if (entry.sizeKnown) all.size += entry.size;
    const auto [place, isNew] = m_setPlaces.try_emplace(entry.setId, sets.size());
    if (isNew) sets.push_back({entry.setId, pool.Text(record.setName)});
    ++sets[place->second].entries;
    all.sets = sets.size();
    if (IsPending(Count())) ++pending;
  }
  if (ticked) Tick(Count(), true);
}

AutoSelect::Entry AutoSelect::Store::At(std::size_t number) const {
  const Record& record = records[number - 1];
  Entry entry;
  entry.name = record.Name();
  entry.storedName = record.StoredName();
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
  ChangePending(number, [&] { ticks.Set(number - 1, ticked); });
  if (groups.empty()) return 0;
  const auto found = groups.find(records[number - 1].setId);
  if (found == groups.end() || IsGroup(number)) return 0;
  Group& group = found->second;
  group.ticked = ticked ? group.ticked + 1 : group.ticked - 1;
  const bool whole = group.ticked == group.members;
  if (ticks[group.number - 1] == whole) return 0;
  ticks.Set(group.number - 1, whole);
  return group.number;
}

void AutoSelect::Store::TickAll(bool ticked) {
  ticks.Assign(ticks.Size(), ticked);
  for (auto& [number, group] : groups) group.ticked = ticked ? group.members : 0;
  CountPending();
}

void AutoSelect::Store::CountPending() {
  pending = 0;
  for (std::size_t number = 1; number <= Count(); ++number) pending += IsPending(number) ? 1 : 0;
}

void AutoSelect::Store::Settle(std::size_t number, bool ticked) {
  ChangePending(number, [&] { settled.Set(number - 1, ticked); });
}

void AutoSelect::Store::Select(std::size_t number, bool select) {
  if (selected[number - 1] == select) return;
  selected.Set(number - 1, select);
  const Record& record = records[number - 1];
  if ((record.flags & kGroup) != 0) return;
  const std::int64_t size = (record.flags & kSizeKnown) != 0 ? record.size : 0;
  ofSelected.entries = select ? ofSelected.entries + 1 : ofSelected.entries - 1;
  ofSelected.size += select ? size : -size;
}

void AutoSelect::Store::SelectNone() {
  selected.Assign(Count(), false);
  ofSelected = {};
}

std::size_t AutoSelect::Store::SetPlace(const Record& record) const {
  if (m_lastSet >= sets.size() || sets[m_lastSet].id != record.setId) {
    m_lastSet = m_setPlaces.at(record.setId);
  }
  return m_lastSet;
}

// Looks at names with their case folded. The table of names is dropped once every entry has been seen.
void AutoSelect::Store::FindVersions(std::size_t max) {
  if (!search) {
    search = std::make_unique<VersionSearch>();
    versioned = 0;
    several.Clear();
    newest.Clear();
  }
  const std::size_t end = std::min(Count() - versioned, max) + versioned;
  std::string mine, other;
  const auto fold = [this](std::size_t number, std::string& folded) -> const std::string& {
    folded.clear();
    AppendFolded(folded, records[number - 1].Name());
    return folded;
  };
  for (std::size_t number = versioned + 1; number <= end; ++number) {
    several.Append(false);
    newest.Append(false);
    if (IsGroup(number)) continue;
    const std::string_view name = fold(number, mine);
    const std::uint32_t hash = HashIndex::HashOf(name);
    const std::uint32_t first =
        search->names.Find(hash, [&](std::uint32_t candidate) { return fold(candidate, other) == name; });
    if (first == 0) {
      search->names.Insert(hash, static_cast<std::uint32_t>(number));
      continue;
    }
    several.Set(first - 1, true);
    several.Set(number - 1, true);
    std::uint32_t& best = search->newest.try_emplace(first, first).first->second;
    if (records[number - 1].time > records[best - 1].time) best = static_cast<std::uint32_t>(number);
  }
  versioned = end;
  if (versioned != Count()) return;
  for (const auto& [first, best] : search->newest) newest.Set(best - 1, true);
  search.reset();
}

}  // namespace kxrestore::controls
