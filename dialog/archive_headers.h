// Rows of the table ArchiveHeader, whatever its columns are, as texts that can be compared and inserted.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "engine/database.h"

namespace kxrestore::dialog {

// The columns of an archive, but for a number that it gives its rows itself (ID).
std::vector<std::string> HeaderColumns(const engine::Recordset& rows);

// Reads the current row of a recordset of headers, in the order of `columns` and whatever the order of its
// own.
class HeaderValues {
 public:
  // Error 3265, which names them, when the recordset lacks columns or has others.
  HeaderValues(const engine::Recordset& rows, const std::vector<std::string>& columns);

  // Equal for rows that hold the same, also where two tables keep a number, a date or a text differently.
  std::string Key() const;
  // The list of the values as the dialect writes them.
  std::string Literals() const;

 private:
  const engine::Recordset& m_rows;
  std::vector<std::size_t> m_positions;
};

// The statement that adds a row with these values.
std::string InsertHeader(const std::vector<std::string>& columns, std::string_view values);

}  // namespace kxrestore::dialog
