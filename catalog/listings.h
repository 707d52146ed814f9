// The fixed queries on a catalog: its completed runs, and its marked rows.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "engine/database.h"

namespace kxrestore::catalog {

// Runs with this extension are never shown.
inline constexpr std::string_view kHiddenExtension = "x01";

// The completed runs of every set, by set name and then the newest first: Name, DateStamp, SetNameID,
// Extension, Permanent, Status.
[[nodiscard]] std::unique_ptr<engine::Recordset> OpenRuns(engine::Database& database);

// Appends a run to a list of runs, and turns such a list into the extension filter that BuildRestoreQuery
// takes.
void AppendRun(std::string& list, std::string_view extension);
std::string RunFilter(std::string_view list);

// The marked rows: SetNameID, OrigSize, DateStamp, Extension, Filename, File, Restore, StoreMethod, Plugin,
// StoreName, RestoreFile (the long path where there is one, else the file name) and the set's Name.
[[nodiscard]] std::unique_ptr<engine::Recordset> OpenSelections(engine::Database& database,
                                                                const engine::ColumnNames& read);

// How many rows are marked: Files.
std::unique_ptr<engine::Recordset> CountSelections(engine::Database& database);

// A mask that matches exactly this name.
std::string NameAsMask(std::string_view name);

// Every version of an entry's file in all sets, newest first, with the columns of FullCatalog. The entry is
// identified as for marking, by its run and `storedName`: Filename or, for an aggregate, File. When its row
// no longer exists, the file is looked up under its stored name.
std::unique_ptr<engine::Recordset> OpenVersions(engine::Database& database, std::int64_t setId,
                                                std::string_view extension, std::string_view storedName,
                                                bool aggregate, const engine::ColumnNames& read);

}  // namespace kxrestore::catalog
