// Helpers for tests of windows: bounds, keys, the clipboard.
#pragma once

#include <gtest/gtest.h>

#include "base/utf16.h"
#include "host/driver/native_windows.h"
#include "platform/win32/controls/control_window.h"

namespace kxrestore::win32::test {

using driver::Ask;
using driver::ClassOf;
using driver::TextOf;

inline HWND WindowOf(controls::Control& control) {
  const ControlWindow* const window = ControlWindow::Of(control);
  return window == nullptr ? nullptr : window->Handle();
}
inline RECT Bounds(HWND window) {
  RECT bounds{};
  GetWindowRect(window, &bounds);
  return bounds;
}
// Posts a key to a window.
inline void PostKey(HWND window, WPARAM key) {
  PostMessageW(window, WM_KEYDOWN, key, 1);
  PostMessageW(window, WM_KEYUP, key, static_cast<LPARAM>(0xC0000001));
}
// Sets the state of the Control key for GetKeyState.
inline void HoldControl(bool held) {
  BYTE keys[256]{};
  GetKeyboardState(keys);
  keys[VK_CONTROL] = held ? 0x80 : 0;
  SetKeyboardState(keys);
}
inline std::string Clipboard() {
  std::string text;
  if (!OpenClipboard(nullptr)) return text;
  if (const HANDLE memory = GetClipboardData(CF_UNICODETEXT)) {
    if (const auto* held = static_cast<const wchar_t*>(GlobalLock(memory))) text = FromWide(held);
    GlobalUnlock(memory);
  }
  CloseClipboard();
  return text;
}

}  // namespace kxrestore::win32::test
