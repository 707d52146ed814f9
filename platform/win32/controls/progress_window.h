// The progress of a long operation, updated about ten times a second.
#pragma once

#include "controls/widgets.h"
#include "platform/win32/controls/control_window.h"

namespace kxrestore::win32 {

std::unique_ptr<controls::Peer> MakeProgressWindow(WindowContext& context, controls::ProgressBar& bar,
                                                   HWND parent);

}  // namespace kxrestore::win32
