#include "platform/win32/controls/tab_window.h"

#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {

namespace {

class TabWindow final : public WindowPeer<controls::Peer> {
 public:
  TabWindow(WindowContext& context, controls::TabStrip& tabs, HWND parent)
      : WindowPeer(context, tabs), m_tabs(tabs) {
    Create(parent, WC_TABCONTROLW, {}, TCS_SINGLELINE);
    ShowTabs();
  }

  // A theme would paint the body in its own colour, visible as seams around the panels.
  std::optional<LRESULT> OnMessage(UINT message, WPARAM wide, LPARAM extra) override {
    if (message != WM_PAINT) return std::nullopt;
    const LRESULT result = PassOn(message, wide, extra);
    RECT body{};
    GetClientRect(Handle(), &body);
    SendMessageW(Handle(), TCM_ADJUSTRECT, FALSE, reinterpret_cast<LPARAM>(&body));
    if (const HDC dc = GetDC(Handle())) {
      FillRect(dc, &body, GetSysColorBrush(COLOR_3DFACE));
      ReleaseDC(Handle(), dc);
    }
    return result;
  }

  std::optional<LRESULT> OnNotify(NMHDR& header) override {
    if (header.code == TCN_SELCHANGE) {
      const int chosen = static_cast<int>(SendMessageW(Handle(), TCM_GETCURSEL, 0, 0)) + 1;
      if (chosen >= 1) m_tabs.UserSelect(chosen, !ByArrow());
      ShowSelected();  // the control may have refused
    }
    return 0;
  }

 protected:
  void OnFlush(unsigned flags) override {
    WindowPeer::OnFlush(flags);
    if ((flags & kItemsFlag) != 0) ShowTabs();
    if ((flags & kValueFlag) != 0) ShowSelected();
  }

 private:
  static bool ByArrow() {
    return GetKeyState(VK_LEFT) < 0 || GetKeyState(VK_RIGHT) < 0 || GetKeyState(VK_UP) < 0 ||
           GetKeyState(VK_DOWN) < 0 || GetKeyState(VK_HOME) < 0 || GetKeyState(VK_END) < 0;
  }

  void ShowTabs() {
    SendMessageW(Handle(), TCM_DELETEALLITEMS, 0, 0);
    int index = 0;
    for (const auto& tab : m_tabs.Tabs()) {
      std::wstring caption = WideShown(tab.caption);
      TCITEMW item{TCIF_TEXT};
      item.pszText = caption.data();
      SendMessageW(Handle(), TCM_INSERTITEMW, index++, reinterpret_cast<LPARAM>(&item));
    }
    ShowSelected();
  }

  void ShowSelected() {
    const LRESULT shown = SendMessageW(Handle(), TCM_GETCURSEL, 0, 0);
    if (shown != m_tabs.SelectedIndex() - 1) {
      SendMessageW(Handle(), TCM_SETCURSEL, m_tabs.SelectedIndex() - 1, 0);
    }
  }

  controls::TabStrip& m_tabs;
};

}  // namespace

std::unique_ptr<controls::Peer> MakeTabWindow(WindowContext& context, controls::TabStrip& tabs, HWND parent) {
  return std::make_unique<TabWindow>(context, tabs, parent);
}

}  // namespace kxrestore::win32
