// Copies a catalog into another kind of database: the way out for users whose catalog file of the desktop
// engine has grown too large.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "engine/database.h"

namespace kxrestore::host {

struct CopiedTable {
  std::string name;
  std::int64_t rows = 0;
};

// What is being done ("copying", "comparing") to which table, and how far.
using CopyProgress =
    std::function<void(const char* doing, const std::string& table, std::int64_t rows, std::int64_t of)>;

// Copies the four tables and the saved query FullCatalog, NULLs, dates and marks included, in one
// transaction, and then compares every row. `target` is the path of a catalog file that is not there yet, or,
// when it begins with "ODBC;", the connect string of a server whose catalog has its tables but no rows.
// Errors are the engine's; 3012 when the target is there or has rows, 3049 when the copy is not the same.
// Then no file is left and nothing is written to the server.
std::vector<CopiedTable> CopyCatalog(engine::Workspace& workspace, const std::string& source,
                                     const std::string& target, const CopyProgress& progress);

}  // namespace kxrestore::host
