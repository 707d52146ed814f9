// Stores a catalog in a catalog file of the embedded database, with its tables, its index and the saved query
// that a catalog must have.
#pragma once

#include <functional>
#include <string>

#include "host/catalog_maker/model.h"

namespace kxrestore::sample {

// Makes the file `path` (UTF-8) anew with the rows that `fill` hands out; what was there before is replaced.
// Failures are kxrestore::Error and leave no catalog.
void WriteCatalogFile(const std::string& path, const std::function<void(CatalogSink&)>& fill);

}  // namespace kxrestore::sample
