// The back end for catalogs on a database server, over the machine's ODBC driver manager.
#pragma once

#include <memory>

#include "engine/database.h"

namespace kxrestore::engine::odbc {

std::unique_ptr<Backend> MakeOdbcBackend();

}  // namespace kxrestore::engine::odbc
