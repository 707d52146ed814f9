// The back end for catalogs on a database server, through the ODBC driver manager.
#pragma once

#include <memory>

#include "engine/database.h"
#include "engine/odbc/waits.h"

namespace kxrestore::engine::odbc {

std::unique_ptr<Backend> MakeOdbcBackend(const Waits& waits = {});

}  // namespace kxrestore::engine::odbc
