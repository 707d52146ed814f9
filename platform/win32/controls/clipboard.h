// Puts text on the clipboard.
#pragma once

#include <string>

#include "platform/win32/win32.h"

namespace kxrestore::win32 {

// Does nothing while another program has the clipboard open.
void CopyText(HWND owner, const std::wstring& text);

}  // namespace kxrestore::win32
