// Fills a catalog on a server, whose tables host/sql/ makes, over any ODBC driver.
#pragma once

#include <functional>
#include <string>

#include "host/catalog_maker/model.h"

namespace kxrestore::sample {

// Adds the rows that `fill` hands out, in one transaction. `connect`: a connect string, with or without
// "ODBC;" before it. Failures are kxrestore::Error; then nothing has been written.
void FillServerCatalog(const std::string& connect, const std::function<void(CatalogSink&)>& fill);

}  // namespace kxrestore::sample
