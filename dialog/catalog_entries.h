// Catalog rows as entries of the file lists: what a row is called, and by what it will be marked.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "catalog/entry_names.h"
#include "controls/auto_select.h"
#include "engine/database.h"
#include "platform/regional.h"

namespace kxrestore::dialog {

using catalog::IsMailServer;
using catalog::kMailServer;

// A date of the catalog; nothing for what is no date.
std::optional<platform::CivilTime> CivilTimeOf(const engine::ValueView& value);

// Adds the rows of a recordset to a list. The columns OrigSize, Extension, SetNameID, DateStamp, Filename,
// File and Plugin must be there, and those named here; error 3265 otherwise.
class CatalogEntries {
 public:
  // Those columns, for who opens the recordset.
  static engine::ColumnNames Columns(std::string_view nameColumn, std::string_view setNameColumn);

  CatalogEntries(engine::Recordset& rows, std::string_view nameColumn, std::string_view setNameColumn);

  void AddCurrentRow(controls::AutoSelect& list, bool ticked);

 private:
  engine::Field m_name, m_size, m_extension, m_setId, m_setName, m_date, m_filename, m_file, m_plugin;
};

}  // namespace kxrestore::dialog
