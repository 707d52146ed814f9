// Text boxes, combo boxes and the list of drives.
#pragma once

#include "controls/widgets.h"
#include "platform/win32/controls/control_window.h"

namespace kxrestore::win32 {

std::unique_ptr<controls::Peer> MakeTextBoxWindow(WindowContext& context, controls::TextBox& box,
                                                  HWND parent);
std::unique_ptr<controls::Peer> MakeComboBoxWindow(WindowContext& context, controls::ComboBox& box,
                                                   HWND parent);
std::unique_ptr<controls::Peer> MakeDriveListBoxWindow(WindowContext& context, controls::DriveListBox& box,
                                                       HWND parent);

}  // namespace kxrestore::win32
