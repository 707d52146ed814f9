// Sizes in readable units.
#pragma once

#include <cstdint>
#include <string>

#include "platform/regional.h"

namespace kxrestore::dialog {

// "512 bytes", "1.4 GB": three digits at most, in units of 1,024.
std::string SizeInPeoplesUnits(const platform::Regional& regional, std::int64_t bytes);

}  // namespace kxrestore::dialog
