// Rebuilds the text of a saved query from the lines in which the file stores it.
#pragma once

#include <span>
#include <string>

#include "engine/jet_file/system_tables.h"

namespace kxrestore::engine::jet_file {

// `lines`: the lines of one query, in order. The text is a SELECT or a UNION and ends in ";". Error 3219 for
// any other kind of query and for one with parameters.
std::string BuildQueryText(const std::string& name, std::span<const QueryLine> lines);

}  // namespace kxrestore::engine::jet_file
