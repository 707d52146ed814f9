// Puts text on the clipboard.
#pragma once

#include <string>

#include "platform/win32/win32.h"

namespace kxrestore::win32 {

// Nothing happens while another program holds the clipboard.
void CopyText(HWND owner, const std::wstring& text);

}  // namespace kxrestore::win32
