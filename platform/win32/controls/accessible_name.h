// Accessible names for windows whose text is their content.
#pragma once

#include <string>

#include "platform/win32/win32.h"

namespace kxrestore::win32 {

// Both do nothing on a system without the annotation service, or when COM is not initialised on this thread.
void AnnotateName(HWND window, const std::wstring& name);
// A name outlives its window unless it is removed.
void RemoveName(HWND window);

}  // namespace kxrestore::win32
