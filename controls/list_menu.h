// The items of a list's menu that need nothing but the list.
#pragma once

#include "controls/auto_select.h"
#include "controls/menu.h"

namespace kxrestore::controls {

// Tick and untick what is selected, and everything that is shown; what there is nothing of is left out.
void AddTickItems(Menu& menu, AutoSelect& list);

}  // namespace kxrestore::controls
