// Rows of the table ArchiveHeader, whatever its columns, as texts that can be compared and inserted.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "engine/database.h"

namespace kxrestore::dialog {

// The columns of an archive except ID, which numbers the rows automatically.
std::vector<std::string> HeaderColumns(const engine::Recordset& rows);

// Reads the current row of a recordset of headers, in the order of `columns`, whatever the recordset's own
// order.
class HeaderValues {
 public:
  // Error 3265, naming the columns, when the recordset lacks columns or has others.
  HeaderValues(const engine::Recordset& rows, const std::vector<std::string>& columns);

  // Equal for rows of equal content, even if their tables store numbers, dates or texts differently.
  std::string Key() const;
  // The values as a list in the SQL dialect.
  std::string Literals() const;

 private:
  const engine::Recordset& m_rows;
  std::vector<std::size_t> m_positions;
};

// The statement that inserts a row with these values.
std::string InsertHeader(const std::vector<std::string>& columns, std::string_view values);

}  // namespace kxrestore::dialog
