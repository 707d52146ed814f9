// The rows of a catalog that the dialog left marked: what a host restores.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/arguments.h"

namespace kxrestore::host {

// The paths to restore in the order of the rows: the long path where a row has one, else its stored name.
// Raises a kxrestore::Error.
std::vector<std::string> MarkedFiles(const Arguments& arguments);

}  // namespace kxrestore::host
