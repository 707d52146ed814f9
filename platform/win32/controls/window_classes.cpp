#include "platform/win32/controls/window_classes.h"

#include <initializer_list>

namespace kxrestore::win32 {

WindowClasses::WindowClasses(HINSTANCE module) : m_module(module) {
  for (const wchar_t* const name : {kFormClass, kContainerClass, kSplitBarClass}) {
    WNDCLASSEXW description{sizeof description};
    description.lpfnWndProc = DefWindowProcW;
    description.hInstance = module;
    description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    description.hbrBackground = reinterpret_cast<HBRUSH>(static_cast<LONG_PTR>(COLOR_3DFACE + 1));
    description.lpszClassName = name;
    RegisterClassExW(&description);
  }
}

WindowClasses::~WindowClasses() {
  for (const wchar_t* const name : {kFormClass, kContainerClass, kSplitBarClass}) {
    UnregisterClassW(name, m_module);
  }
}

}  // namespace kxrestore::win32
