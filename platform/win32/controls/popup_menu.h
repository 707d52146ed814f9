// Shows a popup menu and runs the chosen item.
#pragma once

#include "controls/menu.h"
#include "platform/win32/win32.h"

namespace kxrestore::win32 {

// `place`: the menu's corner on the screen. Returns after the chosen item has run; at once for an empty menu.
void ShowPopupMenu(HWND owner, controls::Menu& menu, POINT place);

}  // namespace kxrestore::win32
