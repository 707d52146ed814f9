// A text on the form. Form code may change it once a row of a long walk; it is shown about ten times a
// second.
#pragma once

#include "controls/widgets.h"
#include "platform/win32/controls/control_window.h"

namespace kxrestore::win32 {

std::unique_ptr<controls::Peer> MakeLabelWindow(WindowContext& context, controls::Label& label, HWND parent);

}  // namespace kxrestore::win32
