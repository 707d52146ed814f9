// Copies a catalog into another kind of database, for users whose desktop-engine file has grown too large.
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

// What is being done ("copying", "comparing") to which table, and the number of rows so far.
using CopyProgress =
    std::function<void(const char* doing, const std::string& table, std::int64_t rows, std::int64_t of)>;

// Copies the four tables and the saved query FullCatalog, including NULLs, dates and marks, in one
// transaction, and then compares every row. `target` is the path of a new catalog file or, when it begins
// with "ODBC;", the connect string of a server with empty catalog tables. Raises the engine's errors; 3012
// when the target exists or has rows, 3049 when the copy differs. After an error no file is left and nothing
// is written to the server.
std::vector<CopiedTable> CopyCatalog(engine::Workspace& workspace, const std::string& source,
                                     const std::string& target, const CopyProgress& progress);

}  // namespace kxrestore::host
