// A text on the form. Form code may change it for every row of a long walk; the display is updated about ten
// times a second.
#pragma once

#include "controls/widgets.h"
#include "platform/win32/controls/control_window.h"

namespace kxrestore::win32 {

std::unique_ptr<controls::Peer> MakeLabelWindow(WindowContext& context, controls::Label& label, HWND parent);

}  // namespace kxrestore::win32
