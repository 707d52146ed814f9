// Dates of the catalog as the user reads them.
#pragma once

#include <cstdint>
#include <string>

#include "engine/value.h"
#include "platform/regional.h"

namespace kxrestore::dialog {

// Short date, a blank and long time, without the time at midnight. What is no date is shown as it stands.
std::string DateText(const platform::Regional& regional, const engine::ValueView& value);

// A number that orders dates; 0 for what is no date.
std::int64_t DateKey(const engine::ValueView& value);

}  // namespace kxrestore::dialog
