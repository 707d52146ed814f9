// Windows that contain others: plain areas, and frames with a caption.
#pragma once

#include "controls/widgets.h"
#include "platform/win32/controls/control_window.h"

namespace kxrestore::win32 {

std::unique_ptr<controls::Peer> MakePictureBoxWindow(WindowContext& context, controls::PictureBox& box,
                                                     HWND parent);
std::unique_ptr<controls::Peer> MakeFrameWindow(WindowContext& context, controls::Frame& frame, HWND parent);

}  // namespace kxrestore::win32
