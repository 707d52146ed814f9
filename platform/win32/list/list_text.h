// What a list window writes into its cells.
#pragma once

#include <string>

#include "controls/auto_select.h"
#include "platform/win32/services/regional.h"
#include "platform/win32/win32.h"

namespace kxrestore::win32 {

std::string CellText(const controls::AutoSelect& list, std::size_t number, controls::ListColumn column,
                     const platform::Regional& regional);

// The text, or as much of its beginning and end as fit into `width` pixels around an ellipsis, more of the
// end. The font is that of the device context.
std::wstring FitMiddle(HDC dc, const std::wstring& text, int width);

}  // namespace kxrestore::win32
