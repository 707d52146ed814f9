// Packed rows in memory: the remaining rows of a recordset once something else is written.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "engine/value.h"

namespace kxrestore::engine {

class RowStore {
 public:
  // Begin a row, then append its values from left to right.
  void BeginRow();
  void Append(const ValueView& value);
  void DropRow();  // the most recent one

  // Moves to the next row and reads its values; false when there is none. The views hold until the next call.
  bool Next(std::vector<ValueView>& values, std::size_t columns);

 private:
  std::vector<std::string> m_blocks;  // no row spans two blocks
  std::size_t m_rowStart = 0;         // of the most recent row
  std::size_t m_block = 0;
  std::size_t m_position = 0;
};

}  // namespace kxrestore::engine
