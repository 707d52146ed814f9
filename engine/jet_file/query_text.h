// The text of a saved query, put together from the lines in which the file keeps it.
#pragma once

#include <span>
#include <string>

#include "engine/jet_file/system_tables.h"

namespace kxrestore::engine::jet_file {

// `lines` are those of one query, in their order. The text is a SELECT or a UNION and ends in ";". Error 3219
// for a query of another kind and for one with parameters.
std::string BuildQueryText(const std::string& name, std::span<const QueryLine> lines);

}  // namespace kxrestore::engine::jet_file
