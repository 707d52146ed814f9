// Accessible names for windows whose text is something else.
#pragma once

#include <string>

#include "platform/win32/win32.h"

namespace kxrestore::win32 {

// Does nothing on a system without the annotation service, or when COM is not initialised on this thread.
void AnnotateName(HWND window, const std::wstring& name);

}  // namespace kxrestore::win32
