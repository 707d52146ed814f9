// Fills the tables of a catalog on a server, created by a script of host/sql/, over any ODBC driver.
#pragma once

#include <functional>
#include <string>

#include "host/catalog_maker/model.h"

namespace kxrestore::sample {

// Adds the rows that `fill` produces, in one transaction. `connect` is a connect string with or without the
// prefix "ODBC;". Failures are kxrestore::Error; then nothing is written.
void FillServerCatalog(const std::string& connect, const std::function<void(CatalogSink&)>& fill);

}  // namespace kxrestore::sample
