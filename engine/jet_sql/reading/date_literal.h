// The inside of a #date#: "m/d/yyyy" or "yyyy-mm-dd", each with an optional time "h:mm[:ss] [AM|PM]", or a
// time alone.
#pragma once

#include <optional>
#include <string_view>

#include "engine/value.h"

namespace kxrestore::engine::jet_sql {

std::optional<DateTime> ParseDateLiteral(std::string_view text);

}  // namespace kxrestore::engine::jet_sql
