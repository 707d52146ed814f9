// An in-memory index on columns that are searched repeatedly: one pass over the table, then each search finds
// its rows. It returns candidates that the caller must compare.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "engine/jet_file/row_filter.h"
#include "engine/jet_file/table.h"

namespace kxrestore::engine::jet_file {

class RowIndex {
 public:
  // `turn` is called regularly; when it returns false, building the index is abandoned and false is returned.
  bool Build(Table& table, const std::vector<const Column*>& columns, const std::function<bool()>& turn);

  // The homes of the rows whose columns may have these values, in file order.
  std::span<const std::uint64_t> Find(const std::vector<Wanted>& wanted) const;
  static RowPointer HomeOf(std::uint64_t entry) {
    return {static_cast<std::uint32_t>(entry >> 8) & 0xFFFFFF, static_cast<std::uint8_t>(entry)};
  }

 private:
  std::size_t BucketOf(std::uint64_t hash) const { return hash >> m_shift; }

  unsigned m_shift = 64;
  std::vector<std::uint32_t> m_starts;   // of each bucket, and the end
  std::vector<std::uint64_t> m_entries;  // page and slot, 32 bits; bucket by bucket
};

}  // namespace kxrestore::engine::jet_file
