// A small window that asks for a day.
#pragma once

#include <optional>
#include <string>

#include "platform/regional.h"
#include "platform/win32/win32.h"

namespace kxrestore::win32 {

// Shows the dialog and waits. The user chooses a day from `first` to `last`, which is preselected. Nothing
// when the user cancels or the window cannot be created.
std::optional<platform::CivilTime> ShowDayDialog(HINSTANCE module, HWND owner, const std::string& question,
                                                 const platform::CivilTime& first,
                                                 const platform::CivilTime& last);

}  // namespace kxrestore::win32
