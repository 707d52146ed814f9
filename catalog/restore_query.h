// The listing query (module modRestoreStd): the catalog rows that match a set, a file mask and an extension
// filter, in all versions or the latest only. Latest versions are found through saved queries in the catalog,
// which every call recreates.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "engine/database.h"

namespace kxrestore::catalog {

// Recreates qryGetLatestBySet and qryGetLatest. An error other than a missing query ends it silently.
void CreateLatestQueries(engine::Database& database);

// Opens the listing as a snapshot.
//
// - `setId` is 0 for all sets.
// - `mask` is matched against any part of OrigName, with the dialect's wildcards (* ? # [...]). Empty means
//   every name. With set 0 a mask is required: the engine rejects the statement without one.
// - `ext` is the operator and operand of a test on Extension ("= 'x'", "In ('x','y')"), or empty. Set 0
//   with a mask ignores it. With `latest` and a set it replaces the set in choosing the versions.
// - `read` names the columns that will be read, see Database::OpenRecordset.
//
// Raises the engine's errors; 3265 when `latest` and a set are requested of a catalog without FullCatalog.
[[nodiscard]] std::unique_ptr<engine::Recordset> BuildRestoreQuery(engine::Database& database,
                                                                   std::int32_t setId, bool latest,
                                                                   std::string_view mask,
                                                                   std::string_view ext,
                                                                   const engine::ColumnNames& read = {});

// Opens the names (OrigName) of at least the rows that BuildRestoreQuery lists for masks that begin with a
// dot. Creates saved queries only for the latest versions.
std::unique_ptr<engine::Recordset> OpenNames(engine::Database& database, std::int32_t setId, bool latest,
                                             std::string_view ext);

}  // namespace kxrestore::catalog
