// The badge on the icon of a tree item whose file is already marked.
#pragma once

#include "platform/win32/win32.h"

namespace kxrestore::win32 {

// `text`: the rectangle of the item's text, right of its icon, which is `pixels` wide.
void DrawBadge(HDC dc, const RECT& text, int pixels);

}  // namespace kxrestore::win32
