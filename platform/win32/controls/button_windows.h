// Push buttons, check boxes and option buttons. A click is reported to the control, and the window then
// displays the control's new state.
#pragma once

#include "controls/widgets.h"
#include "platform/win32/controls/control_window.h"

namespace kxrestore::win32 {

std::unique_ptr<controls::Peer> MakeCommandButtonWindow(WindowContext& context,
                                                        controls::CommandButton& button, HWND parent);
std::unique_ptr<controls::Peer> MakeCheckBoxWindow(WindowContext& context, controls::CheckBox& box,
                                                   HWND parent);
std::unique_ptr<controls::Peer> MakeOptionButtonWindow(WindowContext& context, controls::OptionButton& option,
                                                       HWND parent);

}  // namespace kxrestore::win32
