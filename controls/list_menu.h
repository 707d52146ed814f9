// The menu items that every list has.
#pragma once

#include "controls/auto_select.h"
#include "controls/menu.h"

namespace kxrestore::controls {

// Tick and untick the selected entries, and all visible ones. Items that would do nothing are left out.
void AddTickItems(Menu& menu, AutoSelect& list);

}  // namespace kxrestore::controls
