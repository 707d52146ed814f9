// The nodes of a tree: links, flags and texts, without handles, peers or events.
#pragma once

#include <cstdint>
#include <string_view>

#include "controls/blocks.h"
#include "controls/hash_index.h"
#include "controls/text_arena.h"
#include "controls/tree_view.h"

namespace kxrestore::controls {

struct TreeView::Store {
  enum Flag : std::uint8_t {
    kChecked = 1,
    kExpanded = 2,
    kBold = 4,
    kTextEndsTag = 8,
    kHasKey = 16,
    kRemoved = 32,
  };

  // Record 0 stands above the top nodes; its links make them siblings like any others.
  struct Record {
    const char*
        texts;  // the tag; the text, unless it ends the tag; the key behind its length, if there is one
    std::uint32_t tagLength, textLength;
    std::uint32_t parent, firstChild, lastChild, previous, next;
    std::int16_t image;
    std::uint8_t flags;
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
  void Remove(std::uint32_t node);

  static std::string_view Tag(const Record& record) { return {record.texts, record.tagLength}; }
  static std::string_view Text(const Record& record) {
    return {record.texts + record.tagLength - ((record.flags & kTextEndsTag) != 0 ? record.textLength : 0),
            record.textLength};
  }
  static std::string_view Key(const Record& record);
  void SetTexts(Record& record, std::string_view tag, std::string_view text, std::string_view key);

  std::uint32_t Find(std::string_view key) const { return Find(key, HashIndex::HashOf(key)); }
  std::size_t MemoryUsed() const;

  static std::int16_t CheckedImage(int image);  // error 380 beyond 16 bit

 private:
  [[noreturn]] static void ThrowGone(std::uint32_t node);
  std::uint32_t Find(std::string_view key, std::uint32_t hash) const;
  void Forget(Record& record, std::uint32_t node);

  Blocks<Record, 10> m_records;
  TextArena m_texts;
  HashIndex m_keys;
  std::size_t m_count = 0;
};

}  // namespace kxrestore::controls
