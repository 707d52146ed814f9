// Rows kept in memory, packed: a snapshot's remaining rows when something is written beside it.
#pragma once

#include <sqlite3.h>

#include <cstddef>
#include <string>
#include <vector>

#include "engine/value.h"

namespace kxrestore::engine::sqlite {

class RowStore {
 public:
  // Appends the statement's current row.
  void Append(sqlite3_stmt* statement, std::size_t columns);

  // Moves to the next row and reads its values; false when there is none. The views hold until the next call.
  bool Next(std::vector<ValueView>& values, std::size_t columns);

 private:
  std::vector<std::string> m_blocks;  // no row lies in two blocks
  std::size_t m_block = 0;
  std::size_t m_position = 0;
};

}  // namespace kxrestore::engine::sqlite
