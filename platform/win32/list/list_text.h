// The text of a list window's cells.
#pragma once

#include <string>

#include "controls/auto_select.h"
#include "platform/win32/services/regional.h"
#include "platform/win32/win32.h"

namespace kxrestore::win32 {

std::string CellText(const controls::AutoSelect& list, std::size_t number, controls::ListColumn column,
                     const platform::Regional& regional);

// Replaces the middle of a text that is wider than `width` pixels by an ellipsis and keeps more of the end
// than of the beginning. Measures in the font of the device context.
std::wstring FitMiddle(HDC dc, const std::wstring& text, int width);

}  // namespace kxrestore::win32
