// The line below a list or tree: the ticks not yet applied in bold, then the totals, then those of the
// selected rows at the right. Text that does not fit ends in an ellipsis and is shown in full as a tool tip.
#pragma once

#include "controls/footer.h"
#include "platform/win32/controls/window_context.h"

namespace kxrestore::win32 {

class FooterStrip {
 public:
  explicit FooterStrip(WindowContext& context) : m_context(context) {}
  FooterStrip(const FooterStrip&) = delete;
  FooterStrip& operator=(const FooterStrip&) = delete;

  void Create(HWND parent);
  HWND Handle() const { return m_handle; }
  int Height() const;  // pixels
  void Show(const controls::FooterText& text);
  void Place(int left, int top, int width, int height);
  void OnDpiChanged();  // does nothing before Create
  // Handles WM_DRAWITEM of the parent. False when it is for another window.
  bool Draw(const DRAWITEMSTRUCT& draw) const;

 private:
  void ShowTip();

  WindowContext& m_context;
  HWND m_handle = nullptr;
  std::wstring m_pending, m_sums, m_selected;
  std::string m_whole;
};

}  // namespace kxrestore::win32
