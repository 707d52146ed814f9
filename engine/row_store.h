// Rows kept in memory, packed: what a recordset still has to show when something is written beside it.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "engine/value.h"

namespace kxrestore::engine {

class RowStore {
 public:
  // A row is begun, then its values are appended from left to right.
  void BeginRow();
  void Append(const ValueView& value);
  void DropRow();  // the row begun last

  // Moves to the next row and reads its values; false when there is none. The views hold until the next call.
  bool Next(std::vector<ValueView>& values, std::size_t columns);

 private:
  std::vector<std::string> m_blocks;  // no row lies in two blocks
  std::size_t m_rowStart = 0;         // of the row begun last
  std::size_t m_block = 0;
  std::size_t m_position = 0;
};

}  // namespace kxrestore::engine
