// What an empty list or tree says.
#pragma once

#include <string>

#include "platform/win32/win32.h"

namespace kxrestore::win32 {

// Draws the text over a window that has just painted itself, `top` pixels below its upper edge: centred, in
// the upper part, in grey.
void DrawEmptyText(HWND window, HFONT font, const std::string& text, int top = 0);

// Paints nothing but the background of a list or tree, in place of what the window would paint.
void PaintBlank(HWND window);

}  // namespace kxrestore::win32
