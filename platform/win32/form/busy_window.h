// A small window for a form that has none yet: what keeps it busy, and a button that stops it. It waits for
// nobody; whoever runs the pending messages lets it live.
#pragma once

#include <functional>
#include <string>

#include "platform/win32/win32.h"

namespace kxrestore::win32 {

class BusyWindow {
 public:
  // Over `owner`, which may be nullptr. `stop` is called once, by the button, Esc or the close box.
  BusyWindow(HINSTANCE module, HWND owner, const std::string& title, std::function<void()> stop);
  ~BusyWindow();
  BusyWindow(const BusyWindow&) = delete;
  BusyWindow& operator=(const BusyWindow&) = delete;

  void Show(const std::string& text);
  // Takes a message that is for this window; whether it was.
  bool Handle(MSG& message) const { return m_window != nullptr && IsDialogMessageW(m_window, &message); }
  HWND Window() const { return m_window; }

 private:
  static INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wide, LPARAM extra);

  HWND m_window = nullptr;
  std::function<void()> m_stop;
};

}  // namespace kxrestore::win32
