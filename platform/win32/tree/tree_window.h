// The window of a tree: a native tree control whose items follow the model's nodes
// (platform/win32/tree/tree_items.h).
//
// Check boxes are drawn from the model over a state image that is blank, and questions for the state of an
// item are answered from the model too: setting the state of items costs milliseconds each on some systems.
// Whoever asks sees state image 1 (clear) or 2 (ticked), and may set them.
//
// What the user did is posted and reported once the control has finished its own handling of the message:
// form code lets messages run and may clear the tree meanwhile.
#pragma once

#include "controls/tree_view.h"
#include "platform/win32/controls/control_window.h"

namespace kxrestore::win32 {

std::unique_ptr<controls::Peer> MakeTreeWindow(WindowContext& context, controls::TreeView& tree, HWND parent);

}  // namespace kxrestore::win32
