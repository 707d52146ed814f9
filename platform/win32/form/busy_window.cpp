#include "platform/win32/form/busy_window.h"

#include <utility>

#include "base/phrases.h"
#include "platform/win32/form/dialog_template.h"
#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {

namespace {

constexpr WORD kText = 100;

}  // namespace

BusyWindow::BusyWindow(HINSTANCE module, HWND owner, const std::string& title, std::function<void()> stop)
    : m_stop(std::move(stop)) {
  DialogTemplate dialog(WideShown(title), WS_SYSMENU | WS_VISIBLE, 2, 176, 72);
  dialog.Item(SS_LEFT | SS_NOPREFIX, kText, {8, 8, 168, 46}, {}, DialogTemplate::kStatic);
  dialog.Item(WS_TABSTOP | BS_PUSHBUTTON, IDCANCEL, {118, 52, 168, 66}, Wide(Say(Phrase::kButtonStop)),
              DialogTemplate::kButton);
  m_window =
      CreateDialogIndirectParamW(module, dialog.Get(), owner, Procedure, reinterpret_cast<LPARAM>(this));
}

BusyWindow::~BusyWindow() {
  if (m_window != nullptr) DestroyWindow(m_window);
}

void BusyWindow::Show(const std::string& text) {
  if (m_window != nullptr) SetDlgItemTextW(m_window, kText, WideShownLines(text).c_str());
}

INT_PTR CALLBACK BusyWindow::Procedure(HWND dialog, UINT message, WPARAM wide, LPARAM extra) {
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrW(dialog, DWLP_USER, extra);
    return TRUE;
  }
  if (message != WM_COMMAND || LOWORD(wide) != IDCANCEL) return FALSE;
  auto* const self = reinterpret_cast<BusyWindow*>(GetWindowLongPtrW(dialog, DWLP_USER));
  EnableWindow(GetDlgItem(dialog, IDCANCEL), FALSE);
  const auto stop = std::exchange(self->m_stop, nullptr);
  try {
    if (stop) stop();
  } catch (...) {  // must not pass through the window procedure; the work continues
  }
  return TRUE;
}

}  // namespace kxrestore::win32
