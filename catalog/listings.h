// The fixed statements of the catalog: its completed runs, and what is marked.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "engine/database.h"

namespace kxrestore::catalog {

// Runs with this extension are never shown.
inline constexpr std::string_view kHiddenExtension = "x01";

// The completed runs of every set, by set name and then the newest first: Name, DateStamp, SetNameID,
// Extension, Permanent, Status.
std::unique_ptr<engine::Recordset> OpenRuns(engine::Database& database);

// Adds a run to the list of those that a listing is restricted to, and makes the restriction of such a list,
// as BuildRestoreQuery takes it.
void AppendRun(std::string& list, std::string_view extension);
std::string RunFilter(std::string_view list);

// The marked rows: SetNameID, OrigSize, DateStamp, Extension, Filename, File, Restore, StoreMethod, Plugin,
// StoreName, RestoreFile (the long path where there is one, else the file name) and the set's Name.
std::unique_ptr<engine::Recordset> OpenSelections(engine::Database& database,
                                                  const engine::ColumnNames& read);

}  // namespace kxrestore::catalog
