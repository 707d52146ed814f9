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

using catalog::IsAggregateName;
using catalog::IsMailServer;
using catalog::kMailServer;

// What marking knows an entry by, as one text: two entries that have the same are marked together.
std::string IdentityOf(const controls::AutoSelect::Entry& entry);

// The set of an entry as marking takes it: error 6 beyond 32 bits, 13 when the catalog holds no number there.
std::int32_t SetIdOf(const controls::AutoSelect::Entry& entry);

// A field's text, whatever its type; `buffer` holds it where it is no text already.
std::string_view TextOf(const engine::Field& field, std::string& buffer);

// A date of the catalog; nothing for what is no date.
std::optional<platform::CivilTime> CivilTimeOf(const engine::ValueView& value);

// Adds the rows of a recordset to a list. The columns OrigSize, Extension, SetNameID, DateStamp, Filename,
// File and Plugin must be there, and those named here; error 3265 otherwise.
class CatalogEntries {
 public:
  // Those columns, for who opens the recordset.
  static engine::ColumnNames Columns(std::string_view nameColumn, std::string_view setNameColumn);

  CatalogEntries(engine::Recordset& rows, std::string_view nameColumn, std::string_view setNameColumn);

  // Returns the new entry's number. A value that is not what its column should hold costs only itself: a size
  // that is no number is not shown, a set that is none cannot be marked.
  std::size_t AddCurrentRow(controls::AutoSelect& list, bool ticked);

 private:
  engine::Field m_name, m_size, m_extension, m_setId, m_setName, m_date, m_filename, m_file, m_plugin;
};

}  // namespace kxrestore::dialog
