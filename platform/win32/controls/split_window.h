// A bar that the user drags with the pointer, or moves with the arrow keys when it is focused.
#pragma once

#include "controls/splitters.h"
#include "platform/win32/controls/control_window.h"

namespace kxrestore::win32 {

std::unique_ptr<controls::Peer> MakeSplitWindow(WindowContext& context, controls::SplitBar& bar, HWND parent);

}  // namespace kxrestore::win32
