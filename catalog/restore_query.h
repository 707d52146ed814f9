// The listing query (module modRestoreStd): which catalog rows a set, a file mask and an extension filter
// stand for, all their versions or only the latest. The latest ones are found through saved queries that
// every call makes anew in the catalog.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "engine/database.h"

namespace kxrestore::catalog {

// Makes qryGetLatestBySet and qryGetLatest anew. An error other than a missing query ends it without a word.
void CreateLatestQueries(engine::Database& database);

// Opens the listing as a snapshot.
// `setId`   0 for all sets.
// `mask`    part of OrigName, with the dialect's wildcards (* ? # [...]); empty for every name. With set 0 a
// mask is
//           required: the statement without one is refused by the engine.
// `ext`     operator and operand of a test on Extension ("= 'x'", "In ('x','y')"); empty for none. Not used
// with
//           set 0 and a mask. With `latest` and a set it takes the place of the set in choosing the versions.
// `read`    the columns that will be read, see Database::OpenRecordset.
// Errors are the engine's; 3265 when `latest` and a set are asked of a catalog that has no FullCatalog.
std::unique_ptr<engine::Recordset> BuildRestoreQuery(engine::Database& database, std::int32_t setId,
                                                     bool latest, std::string_view mask, std::string_view ext,
                                                     const engine::ColumnNames& read = {});

}  // namespace kxrestore::catalog
