// The window of a list: a native list control in virtual mode. It asks the model for every row that it draws,
// so a million entries take no memory here.
#pragma once

#include "controls/auto_select.h"
#include "platform/win32/controls/control_window.h"

namespace kxrestore::win32 {

std::unique_ptr<controls::Peer> MakeListWindow(WindowContext& context, controls::AutoSelect& list,
                                               HWND parent);

}  // namespace kxrestore::win32
