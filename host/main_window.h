// The sample host's main window, which shows that the dialog disables it.
#pragma once

#include <windows.h>

namespace kxrestore::host {

class MainWindow {
 public:
  MainWindow();
  ~MainWindow();
  MainWindow(const MainWindow&) = delete;
  MainWindow& operator=(const MainWindow&) = delete;

  bool IsEnabled() const { return IsWindowEnabled(m_window) != FALSE; }

 private:
  HWND m_window;
};

}  // namespace kxrestore::host
