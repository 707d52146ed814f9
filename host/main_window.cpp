#include "host/main_window.h"

namespace kxrestore::host {

MainWindow::MainWindow() {
  WNDCLASSW description{};
  description.lpfnWndProc = DefWindowProcW;
  description.hInstance = GetModuleHandleW(nullptr);
  description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  description.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_APPWORKSPACE + 1);
  description.lpszClassName = L"restore_host";
  RegisterClassW(&description);
  m_window = CreateWindowExW(0, description.lpszClassName, L"Restore host", WS_OVERLAPPEDWINDOW | WS_VISIBLE,
                             CW_USEDEFAULT, CW_USEDEFAULT, 1000, 800, nullptr, nullptr, description.hInstance,
                             nullptr);
}

MainWindow::~MainWindow() {
  DestroyWindow(m_window);
}

}  // namespace kxrestore::host
