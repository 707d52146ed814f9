// The badge on the icon of a tree's item: what it stands for is done already.
#pragma once

#include "platform/win32/win32.h"

namespace kxrestore::win32 {

// `text`: where the item's text stands, right of its icon, which is `pixels` wide.
void DrawBadge(HDC dc, const RECT& text, int pixels);

}  // namespace kxrestore::win32
