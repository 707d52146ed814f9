// The window of a tree: a native tree control whose items follow the model's nodes
// (platform/win32/tree/tree_items.h).
//
// Check boxes are drawn from the model over a blank state image, and queries for the state of an item are
// answered from the model: setting the state of an item takes milliseconds on some systems. Other code sees
// state image 1 (clear) or 2 (ticked) and may set them.
//
// User input is posted and reported after the control has finished handling the message: form code processes
// messages and may clear the tree.
#pragma once

#include "controls/tree_view.h"
#include "platform/win32/controls/control_window.h"

namespace kxrestore::win32 {

std::unique_ptr<controls::Peer> MakeTreeWindow(WindowContext& context, controls::TreeView& tree, HWND parent);

}  // namespace kxrestore::win32
