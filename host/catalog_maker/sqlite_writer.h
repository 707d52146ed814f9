// Writes a catalog file with its tables, its index and the saved query that a catalog needs.
#pragma once

#include <functional>
#include <string>

#include "host/catalog_maker/model.h"

namespace kxrestore::sample {

// Creates the file `path` (UTF-8), replacing any, with the rows that `fill` produces. Failures are
// kxrestore::Error and leave no catalog.
void WriteCatalogFile(const std::string& path, const std::function<void(CatalogSink&)>& fill);

}  // namespace kxrestore::sample
