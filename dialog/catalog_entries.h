// Catalog rows as entries of the file lists: what a row is called, and by what it will be marked.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "controls/auto_select.h"
#include "engine/database.h"
#include "platform/regional.h"

namespace kxrestore::dialog {

// Items that the mail-server plug-in backed up as one aggregate carry this extension in the lists.
inline constexpr std::string_view kMailServer = "Exchange Server";
inline constexpr std::string_view kAggregateExtension = "kxexag";

// Whether a Plugin value is the mail server's: its name, alone or with more behind it.
bool IsMailServer(std::string_view plugin);

// Name shown for a row of the mail server: `file`, or the plug-in's text when that says more than the
// plug-in's name, with ".kxexag" behind it. Nothing for any other plug-in.
std::optional<std::string> AggregateName(std::string_view plugin, std::string_view file);

// Whether a shown name is one of those. They are marked by File in all their versions, everything else by
// Filename.
bool IsAggregateName(std::string_view name);

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
