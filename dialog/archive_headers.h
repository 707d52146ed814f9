// Rows of the table ArchiveHeader, whatever its columns are, as texts that can be compared and inserted.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/database.h"

namespace kxrestore::dialog {

// The columns of an archive, but for a number that it gives its rows itself (ID).
std::vector<std::string> HeaderColumns(const engine::Recordset& rows);

// Reads the current row of a recordset of headers as the list of its values in the order of `columns`, each
// as the dialect writes it. A column that the recordset lacks is Null.
class HeaderValues {
 public:
  // Error 3265 when the recordset has none of the columns.
  HeaderValues(const engine::Recordset& rows, const std::vector<std::string>& columns);
  std::string Current() const;

 private:
  const engine::Recordset& m_rows;
  std::vector<std::optional<std::size_t>> m_positions;
};

// The statement that adds a row with these values.
std::string InsertHeader(const std::vector<std::string>& columns, std::string_view values);

}  // namespace kxrestore::dialog
