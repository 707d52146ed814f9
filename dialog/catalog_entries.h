// Catalog rows as entries of the file lists: the name shown and the name that marking compares.
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

// The identity of an entry for marking, as one text: entries with the same identity are marked together.
std::string IdentityOf(const controls::AutoSelect::Entry& entry);

// The set number of an entry for marking. Error 6 beyond 32 bits, 13 when the catalog holds no number.
std::int32_t SetIdOf(const controls::AutoSelect::Entry& entry);

// A field's value as text. `buffer` holds the conversion of other types.
std::string_view TextOf(const engine::Field& field, std::string& buffer);

// A date of the catalog; nothing when the value is not a date.
std::optional<platform::CivilTime> CivilTimeOf(const engine::ValueView& value);

// Adds the rows of a recordset to a list. The recordset needs the columns OrigSize, Extension, SetNameID,
// DateStamp, Filename, File and Plugin and the two named here; error 3265 otherwise.
class CatalogEntries {
 public:
  // The names of those columns, for opening the recordset.
  static engine::ColumnNames Columns(std::string_view nameColumn, std::string_view setNameColumn);

  CatalogEntries(engine::Recordset& rows, std::string_view nameColumn, std::string_view setNameColumn);

  // Returns the new entry's number. An invalid value affects only itself: a size that is not a number is not
  // shown, an entry whose set is not a number cannot be marked.
  std::size_t AddCurrentRow(controls::AutoSelect& list, bool ticked);

 private:
  engine::Field m_name, m_size, m_extension, m_setId, m_setName, m_date, m_filename, m_file, m_plugin;
};

}  // namespace kxrestore::dialog
