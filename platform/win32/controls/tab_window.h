// The tab strip. The panels are siblings on top of its body.
#pragma once

#include "controls/widgets.h"
#include "platform/win32/controls/control_window.h"

namespace kxrestore::win32 {

std::unique_ptr<controls::Peer> MakeTabWindow(WindowContext& context, controls::TabStrip& tabs, HWND parent);

}  // namespace kxrestore::win32
