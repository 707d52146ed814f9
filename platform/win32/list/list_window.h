// The window of a list: a native list control without items of its own. What it
// shows it asks of the model, row by row, so a million entries cost nothing
// here; only sorting keeps four bytes an entry.
#pragma once

#include "controls/auto_select.h"
#include "platform/win32/controls/control_window.h"

namespace kxrestore::win32 {

std::unique_ptr<controls::Peer> MakeListWindow(WindowContext& context, controls::AutoSelect& list,
                                               HWND parent);

}  // namespace kxrestore::win32
