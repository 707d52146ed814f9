// The nodes of a tree: links, flags and texts, without handles, peers or events.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "controls/blocks.h"
#include "controls/hash_index.h"
#include "controls/text_arena.h"
#include "controls/tree_view.h"

namespace kxrestore::controls {

struct TreeView::Store {
  enum Flag : std::uint16_t {
    kNoFlag = 0,
    kChecked = 1,
    kExpanded = 2,
    kBold = 4,
    kTextEndsTag = 8,
    kHasKey = 16,  // a key of its own, kept with the texts
    kFolder = 32,  // a key made from that of its parent
    kRemoved = 64,
    kMixed = 128,
    kOrdered = 256,   // its children stand in their order
    kSettled = 1024,  // the catalog has its check
    kTagged = 2048,   // it has a tag, as nodes that stand for files do
  };

  // Record 0 stands above the top nodes; its links make them siblings like any others.
  struct Record {
    const char* texts;  // lengths, tag, text and key, as SetTexts lays them out
    std::uint32_t parent, firstChild, lastChild, previous, next;
    std::int16_t image;
    std::uint16_t flags;
  };
  static_assert(sizeof(Record) <= 32);
  struct Texts {
    std::string_view tag, text, key;  // the key is empty unless the node has one of its own
  };

  Store() { m_records.Append(Record{}); }

  bool Lives(std::uint32_t node) const {
    return node != 0 && node < m_records.Size() && (m_records[node].flags & kRemoved) == 0;
  }
  // The record of a node that must live: error 91 for nothing, 35601 for a node that is gone.
  Record& At(std::uint32_t node) {
    if (!Lives(node)) ThrowGone(node);
    return m_records[node];
  }

  std::uint32_t Highest() const { return static_cast<std::uint32_t>(m_records.Size() - 1); }
  std::size_t Count() const { return m_count; }
  std::uint32_t FirstChildOf(std::uint32_t parent) const { return m_records[parent].firstChild; }

  std::uint32_t Add(std::uint32_t parent, std::string_view key, std::string_view text, int image,
                    std::string_view tag);
  std::uint32_t FindOrAddFolder(std::uint32_t parent, std::string_view text, int image);
  void Remove(std::uint32_t node);
  // Puts the children of a node into the order of folders first and names as people count.
  void OrderChildren(std::uint32_t parent);

  static Texts TextsOf(const Record& record);
  void SetText(std::uint32_t node, std::string_view text);
  void SetTag(std::uint32_t node, std::string_view tag);
  std::string Key(std::uint32_t node) const;  // of a node that lives

  std::uint32_t Find(std::string_view key) const;
  std::size_t MemoryUsed() const;

  // Takes a node out of the counts of files, or puts it in again: around what may change how it counts.
  void CountOut(const Record& record) { CountBy<-1>(record); }
  void CountIn(const Record& record) { CountBy<1>(record); }
  FileCounts files;

  static std::int16_t CheckedImage(int image);  // error 380 beyond 16 bit

 private:
  template <int by>
  void CountBy(const Record& record) {
    if ((record.flags & kTagged) == 0) return;
    files.all += static_cast<std::size_t>(by);
    if ((record.flags & kChecked) == 0) return;
    files.checked += static_cast<std::size_t>(by);
    if ((record.flags & kSettled) == 0) files.pending += static_cast<std::size_t>(by);
  }
  [[noreturn]] static void ThrowGone(std::uint32_t node);
  void SetTexts(Record& record, const Texts& texts);
  std::uint32_t Append(std::uint32_t parent, const Texts& texts, int image, Flag kind);
  std::string_view OwnKey(std::uint32_t node) const {
    return (m_records[node].flags & kHasKey) != 0 ? TextsOf(m_records[node]).key : std::string_view();
  }
  bool KeyIs(std::uint32_t node, std::string_view key) const;
  std::uint64_t KeyHash(std::uint32_t node);

  Blocks<Record, 10> m_records;
  TextArena m_texts;
  HashIndex m_keys;  // nodes that are gone stay in it: no key equals theirs
  std::size_t m_count = 0;

  // The hash of the key of the folder that was asked for last, so that a path costs one step a level.
  std::uint32_t m_hashedFolder = 0;
  std::uint64_t m_folderHash = 0;
  std::vector<std::uint32_t> m_unhashed;  // kept for its room
};

}  // namespace kxrestore::controls
