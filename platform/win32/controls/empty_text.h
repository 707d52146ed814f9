// The text in an empty list or tree.
#pragma once

#include <string>

#include "platform/win32/win32.h"

namespace kxrestore::win32 {

// Draws the text over a window that has just painted itself, `top` pixels below its upper edge: centred, in
// the upper part, in grey.
void DrawEmptyText(HWND window, HFONT font, const std::string& text, int top = 0);

// Paints only the background of a list or tree.
void PaintBlank(HWND window);

}  // namespace kxrestore::win32
