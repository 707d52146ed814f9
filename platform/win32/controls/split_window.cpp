#include "platform/win32/controls/split_window.h"

#include "platform/win32/controls/window_classes.h"

namespace kxrestore::win32 {

namespace {

constexpr int kNudge = 120;  // twips for each arrow key
constexpr int kSizeNS = 7;   // the pointers' numbers
constexpr int kSizeWE = 9;
constexpr int kMiddleButton = 4;  // beside the control's left and right

COLORREF NativeColor(std::uint32_t color) {
  constexpr std::uint32_t kSystemColor = 0x80000000;
  return (color & kSystemColor) != 0 ? GetSysColor(static_cast<int>(color & 0xFF)) : color & 0xFFFFFF;
}

int Buttons(WPARAM keys) {
  return ((keys & MK_LBUTTON) != 0 ? controls::SplitBar::kLeftButton : 0) |
         ((keys & MK_RBUTTON) != 0 ? controls::SplitBar::kRightButton : 0) |
         ((keys & MK_MBUTTON) != 0 ? kMiddleButton : 0);
}

class SplitWindow final : public WindowPeer<controls::Peer> {
 public:
  SplitWindow(WindowContext& context, controls::SplitBar& bar, HWND parent)
      : WindowPeer(context, bar), m_bar(bar) {
    Create(parent, kSplitBarClass, {}, 0);
  }

  std::optional<LRESULT> OnMessage(UINT message, WPARAM wide, LPARAM extra) override {
    switch (message) {
      case WM_LBUTTONDOWN:
        m_dragging = true;
        SetCapture(Handle());
        return 0;
      case WM_MOUSEMOVE:
        Context().Guarded([&] {
          m_bar.UserMouseMoveOver(Buttons(wide), Context().ToTwips(GET_X_LPARAM(extra)),
                                  Context().ToTwips(GET_Y_LPARAM(extra)));
        });
        Context().Flush();
        return 0;
      case WM_LBUTTONUP:
      case WM_RBUTTONUP:
      case WM_MBUTTONUP:
        m_dragging = false;
        if (GetCapture() == Handle()) ReleaseCapture();
        m_bar.UserMouseUp();
        return 0;
      case WM_CAPTURECHANGED:  // the drag was interrupted
        if (std::exchange(m_dragging, false)) m_bar.UserMouseUp();
        return 0;
      case WM_SETCURSOR:
        if (LOWORD(extra) != HTCLIENT) return std::nullopt;
        SetCursor(LoadCursorW(nullptr, Pointer()));
        return TRUE;
      case WM_KEYDOWN:
        if (const int step = Step(wide)) {
          m_bar.UserNudge(step);
          return 0;
        }
        return std::nullopt;
      case WM_SETFOCUS:
      case WM_KILLFOCUS:
        InvalidateRect(Handle(), nullptr, FALSE);
        return std::nullopt;
      case WM_ERASEBKGND:
        return TRUE;
      case WM_PAINT:
        Paint();
        return 0;
      default:
        return std::nullopt;
    }
  }

 protected:
  void OnFlush(unsigned flags) override {
    WindowPeer::OnFlush(flags);
    if ((flags & (kAppearanceFlag | kGeometryFlag)) != 0) InvalidateRect(Handle(), nullptr, FALSE);
  }

 private:
  LPCWSTR Pointer() const {
    if (m_bar.MousePointer() == kSizeNS) return IDC_SIZENS;
    return m_bar.MousePointer() == kSizeWE ? IDC_SIZEWE : IDC_ARROW;
  }

  int Step(WPARAM key) const {
    const bool horizontal = m_bar.GetDirection() == controls::SplitBar::Direction::kHorizontalBar;
    if (key == (horizontal ? VK_UP : VK_LEFT)) return -kNudge;
    return key == (horizontal ? VK_DOWN : VK_RIGHT) ? kNudge : 0;
  }

  void Paint() {
    PAINTSTRUCT paint{};
    const HDC dc = BeginPaint(Handle(), &paint);
    RECT area{};
    GetClientRect(Handle(), &area);
    const bool focused = GetFocus() == Handle();
    SetDCBrushColor(dc, focused ? GetSysColor(COLOR_HIGHLIGHT) : NativeColor(m_bar.BackColor()));
    FillRect(dc, &area, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
    if (m_bar.BorderStyle() != 0) DrawEdge(dc, &area, EDGE_SUNKEN, BF_RECT);
    EndPaint(Handle(), &paint);
  }

  controls::SplitBar& m_bar;
  bool m_dragging = false;
};

}  // namespace

std::unique_ptr<controls::Peer> MakeSplitWindow(WindowContext& context, controls::SplitBar& bar,
                                                HWND parent) {
  return std::make_unique<SplitWindow>(context, bar, parent);
}

}  // namespace kxrestore::win32
