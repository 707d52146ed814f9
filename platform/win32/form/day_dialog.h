// A small window that asks for a day.
#pragma once

#include <optional>
#include <string>

#include "platform/regional.h"
#include "platform/win32/win32.h"

namespace kxrestore::win32 {

// Shows it over `owner` and waits. The days from `first` to `last` can be chosen; it starts with the last
// one. Nothing when the user cancels, or when it cannot be made.
std::optional<platform::CivilTime> ShowDayDialog(HINSTANCE module, HWND owner, const std::string& question,
                                                 const platform::CivilTime& first,
                                                 const platform::CivilTime& last);

}  // namespace kxrestore::win32
