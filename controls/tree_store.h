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
    kHasKey = 16,  // the key is stored with the texts
    kFolder = 32,  // the key is built from the parent's
    kRemoved = 64,
    kMixed = 128,
    kOrdered = 256,   // its children are sorted
    kSettled = 1024,  // marked in the catalog
    kTagged = 2048,   // has a tag, as nodes for files do
  };

  // Record 0 is the parent of the top nodes.
  struct Record {
    const char* texts;  // lengths, tag, text and key, in the layout of SetTexts
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
  // Error 91 for no node, 35601 for a removed one.
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
  // Sorts the children of a node, folders first.
  void OrderChildren(std::uint32_t parent, const SortKey& sortKey);

  static Texts TextsOf(const Record& record);
  void SetText(std::uint32_t node, std::string_view text);
  void SetTag(std::uint32_t node, std::string_view tag);
  std::string Key(std::uint32_t node) const;

  std::uint32_t Find(std::string_view key) const;
  std::size_t MemoryUsed() const;

  // Bracket a change to a node that may affect the counts of files.
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
  HashIndex m_keys;  // removed nodes stay in it; no key equals theirs
  std::size_t m_count = 0;

  // The key hash of the last folder looked up, so that a path costs one step per level.
  std::uint32_t m_hashedFolder = 0;
  std::uint64_t m_folderHash = 0;
  std::vector<std::uint32_t> m_unhashed;  // a member to reuse its memory
};

}  // namespace kxrestore::controls
