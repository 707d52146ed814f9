// The entries of a list and what is kept of each of them, without order, filter, peers or events.
#pragma once

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
  enum Flag : std::uint8_t { kSizeKnown = 1, kGroup = 2, kSharedNames = 4, kPlainName = 8 };

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
  std::string_view NameAt(std::size_t number) const {
    const Record& record = records[number - 1];
    const bool ended = (record.flags & kSharedNames) != 0 && record.storedLength > record.nameLength;
    return {record.names + (ended ? record.storedLength - record.nameLength : 0), record.nameLength};
  }
  std::string_view FoldedName(std::size_t number, std::string& folded) const;
  bool IsGroup(std::size_t number) const { return (records[number - 1].flags & kGroup) != 0; }

  struct Group {
    std::size_t number = 0, members = 0, ticked = 0;
  };
  // The group's own tick says whether all of its members are ticked. Returns the group when its tick changed.
  std::size_t Tick(std::size_t number, bool ticked);
  void TickAll(bool ticked);

  bool IsPending(std::size_t number) const {
    return !IsGroup(number) && ticks[number - 1] != settled[number - 1];
  }
  void Settle(std::size_t number, bool ticked);

  void Select(std::size_t number, bool selected);
  void SelectNone();

  // The set of an entry's record, as a place in `sets`.
  std::size_t SetPlace(const Record& record) const;

  void FindVersions(std::size_t most);

  Blocks<Record, 10> records;
  Bits ticks;
  Bits settled;  // the ticks that the catalog has
  Bits selected;
  std::size_t pending = 0;
  Sum all, ofSelected;
  std::vector<Set> sets;
  std::unordered_map<std::int64_t, Group> groups;  // of file types, by their number
  TextArena texts;
  TextPool pool;

  // Of the first `versioned` entries: whether others are of the same file, and whether it is the newest.
  std::size_t versioned = 0;
  Bits several, newest;
  struct VersionSearch {
    HashIndex names;                                          // of the first entry of each name
    std::unordered_map<std::uint32_t, std::uint32_t> newest;  // by that entry, where there are more
  };
  std::unique_ptr<VersionSearch> search;  // while not every entry has been seen

 private:
  std::unordered_map<std::int64_t, std::size_t> m_setPlaces;
  mutable std::size_t m_lastSet = 0;  // entries that follow each other mostly are of one set
};

}  // namespace kxrestore::controls
