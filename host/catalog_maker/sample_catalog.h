// Sample catalogs in one call, for the program make_catalog, the tests and the benchmarks.
#pragma once

#include <string>

#include "host/catalog_maker/generator.h"

namespace kxrestore::sample {

// Creates the catalog file `path` (UTF-8), replacing any. Failures are kxrestore::Error.
void MakeCatalog(const std::string& path, const SampleOptions& options = {});

}  // namespace kxrestore::sample
