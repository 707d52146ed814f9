// A small window that shows the progress of a form that has no window yet, with a button to stop. It is
// modeless: it works while the thread processes messages.
#pragma once

#include <functional>
#include <string>

#include "platform/win32/win32.h"

namespace kxrestore::win32 {

class BusyWindow {
 public:
  // `owner` may be nullptr. `stop` is called once, by the button, Esc or the close box.
  BusyWindow(HINSTANCE module, HWND owner, const std::string& title, std::function<void()> stop);
  ~BusyWindow();
  BusyWindow(const BusyWindow&) = delete;
  BusyWindow& operator=(const BusyWindow&) = delete;

  void Show(const std::string& text);
  // Handles a message for this window. Returns false for any other.
  bool Handle(MSG& message) const { return m_window != nullptr && IsDialogMessageW(m_window, &message); }
  HWND Window() const { return m_window; }

 private:
  static INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wide, LPARAM extra);

  HWND m_window = nullptr;
  std::function<void()> m_stop;
};

}  // namespace kxrestore::win32
