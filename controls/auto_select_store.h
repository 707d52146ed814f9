// The entries of a list and what is stored for each of them. Order, filter, peers and events are elsewhere.
#pragma once

#include <algorithm>
#include <concepts>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "controls/auto_select.h"
#include "controls/bits.h"
#include "controls/blocks.h"
#include "controls/hash_index.h"
#include "controls/text_arena.h"
#include "controls/text_pool.h"

namespace kxrestore::controls {

struct AutoSelect::Store {
  enum Flag : std::uint8_t { kSizeKnown = 1, kGroup = 2, kSharedNames = 4, kAsciiName = 8 };

  struct Record {
    const char* names;  // the shown name, then the stored one; only the longer when it ends with the other
    std::int64_t size, time, setId;
    std::uint32_t nameLength, storedLength;
    std::uint32_t extension, setName, date;  // numbers in `pool`
    std::uint8_t flags;

    std::string_view Name() const { return {names + Skipped(nameLength), nameLength}; }
    std::string_view StoredName() const {
      const bool shared = (flags & kSharedNames) != 0;
      return {names + (shared ? Skipped(storedLength) : nameLength), storedLength};
    }

   private:
    // If the names share their end, the number of characters before the shorter one.
    std::uint32_t Skipped(std::uint32_t length) const {
      const bool shared = (flags & kSharedNames) != 0;
      return shared ? std::max(nameLength, storedLength) - length : 0;
    }
  };

  explicit Store(std::optional<bool> pendingTickOfList = std::nullopt) : pendingTick(pendingTickOfList) {}

  std::size_t Count() const { return records.Size(); }
  void Add(const Entry& entry, bool ticked);
  Entry At(std::size_t number) const;
  bool IsGroup(std::size_t number) const { return (records[number - 1].flags & kGroup) != 0; }

  struct Group {
    std::size_t number = 0, members = 0, ticked = 0;
  };
  // A group is ticked when all of its members are. Returns the group when its tick changed, 0 otherwise.
  std::size_t Tick(std::size_t number, bool ticked);
  void TickAll(bool ticked);

  bool IsPending(std::size_t number) const {
    const bool ticked = ticks[number - 1];
    return !IsGroup(number) && ticked != settled[number - 1] && (!pendingTick || *pendingTick == ticked);
  }
  // Runs `change` on an entry and keeps the number of pending ones.
  template <std::invocable Change>
  void ChangePending(std::size_t number, Change&& change) {
    const bool before = IsPending(number);
    change();
    const bool after = IsPending(number);
    pending = pending + (after ? 1 : 0) - (before ? 1 : 0);
  }
  void Settle(std::size_t number, bool ticked);
  void CountPending();

  void Select(std::size_t number, bool selected);
  void SelectNone();

  // The set of an entry's record, as a place in `sets`.
  std::size_t SetPlace(const Record& record) const;

  void FindVersions(std::size_t max);

  Blocks<Record, 10> records;
  Bits ticks;
  Bits settled;  // the ticks that the catalog has
  Bits selected;
  std::size_t pending = 0;
  std::optional<bool> pendingTick;  // nothing: either tick can be pending
  Sum all, ofSelected;
  std::vector<Set> sets;
  std::unordered_map<std::int64_t, Group> groups;  // of file types, by their number
  TextArena texts;
  TextPool pool;

  // For each of the first `versioned` entries: whether other entries are versions of the same file, and
  // whether it is the newest of them.
  std::size_t versioned = 0;
  Bits several, newest;
  struct VersionSearch {
    HashIndex names;                                          // finds the first entry of each name
    std::unordered_map<std::uint32_t, std::uint32_t> newest;  // by that entry, where it has several versions
  };
  std::unique_ptr<VersionSearch> search;  // until every entry has been seen

 private:
  std::unordered_map<std::int64_t, std::size_t> m_setPlaces;
  mutable std::size_t m_lastSet = 0;  // consecutive entries mostly belong to one set
};

}  // namespace kxrestore::controls
