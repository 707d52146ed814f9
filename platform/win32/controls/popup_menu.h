// Shows a popup menu and runs what the user chooses from it.
#pragma once

#include "controls/menu.h"
#include "platform/win32/win32.h"

namespace kxrestore::win32 {

// `place`: on the screen, where the menu's corner goes. Returns once the menu has closed and what was chosen
// has run; an empty menu returns at once.
void ShowPopupMenu(HWND owner, controls::Menu& menu, POINT place);

}  // namespace kxrestore::win32
