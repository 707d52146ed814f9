// The window classes of this component. They are registered while a form is shown and unregistered
// afterwards, so that the DLL can be unloaded. All of them forward every message to the windows' peers.
#pragma once

#include "platform/win32/win32.h"

namespace kxrestore::win32 {

inline constexpr wchar_t kFormClass[] = L"KXRestore.frmRestore";
inline constexpr wchar_t kContainerClass[] = L"KXRestore.PictureBox";
inline constexpr wchar_t kSplitBarClass[] = L"KXRestore.SplitBar";

class WindowClasses {
 public:
  explicit WindowClasses(HINSTANCE module);
  ~WindowClasses();
  WindowClasses(const WindowClasses&) = delete;
  WindowClasses& operator=(const WindowClasses&) = delete;

 private:
  HINSTANCE m_module;
};

}  // namespace kxrestore::win32
