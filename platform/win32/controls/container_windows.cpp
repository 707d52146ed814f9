#include "platform/win32/controls/container_windows.h"

#include <algorithm>

#include "platform/win32/controls/theme.h"
#include "platform/win32/controls/window_classes.h"
#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {

namespace {

constexpr DWORD kContainerStyle = WS_CLIPCHILDREN;
constexpr int kCaptionIndent = 120;  // twips

class PictureBoxWindow final : public WindowPeer<controls::Peer> {
 public:
  PictureBoxWindow(WindowContext& context, controls::PictureBox& box, HWND parent)
      : WindowPeer(context, box) {
    Create(parent, kContainerClass, {}, kContainerStyle, WS_EX_CONTROLPARENT);
  }
  bool TakesFocus() const override { return false; }

 protected:
  RECT PixelBounds() const override { return SizedBounds(); }
};

// Draws its border itself: a group box as a child window would cover its contents.
class FrameWindow final : public WindowPeer<controls::Peer> {
 public:
  FrameWindow(WindowContext& context, controls::Frame& frame, HWND parent)
      : WindowPeer(context, frame), m_frame(frame) {
    Create(parent, kContainerClass, WideShown(frame.Caption()), kContainerStyle, WS_EX_CONTROLPARENT);
  }
  bool TakesFocus() const override { return false; }

  std::optional<LRESULT> OnMessage(UINT message, WPARAM wide, LPARAM extra) override {
    switch (message) {
      case WM_PAINT:
        Paint();
        return 0;
      case WM_SIZE:
      case WM_THEMECHANGED:
        InvalidateRect(Handle(), nullptr, TRUE);
        return std::nullopt;
      case WM_UPDATEUISTATE: {  // underlines come and go
        const LRESULT result = PassOn(message, wide, extra);
        InvalidateRect(Handle(), nullptr, TRUE);
        return result;
      }
      default:
        return std::nullopt;
    }
  }

 protected:
  void OnFlush(unsigned flags) override {
    WindowPeer::OnFlush(flags);
    if ((flags & kCaptionFlag) != 0) SetWindowTextW(Handle(), WideShown(m_frame.Caption()).c_str());
    if ((flags & (kCaptionFlag | kEnabledFlag)) != 0) InvalidateRect(Handle(), nullptr, TRUE);
  }

 private:
  void Paint() {
    PAINTSTRUCT paint{};
    const HDC dc = BeginPaint(Handle(), &paint);
    const int state = SaveDC(dc);
    SelectObject(dc, OwnFont());
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(m_frame.Enabled() ? COLOR_BTNTEXT : COLOR_GRAYTEXT));
    const std::wstring caption = WideShown(m_frame.Caption());
    const bool hideCues = (SendMessageW(Handle(), WM_QUERYUISTATE, 0, 0) & UISF_HIDEACCEL) != 0;
    const UINT format = DT_SINGLELINE | (hideCues ? DT_HIDEPREFIX : 0);
    RECT border{};
    GetClientRect(Handle(), &border);
    RECT text{};
    DrawTextW(dc, caption.c_str(), -1, &text, format | DT_CALCRECT);
    const int indent = Context().ToPixels(kCaptionIndent);
    OffsetRect(&text, indent, 0);
    const bool cut = text.right > border.right - indent;
    if (cut) text.right = border.right - indent;
    ShowToolTip(cut ? m_frame.Caption() : std::string());
    DrawTextW(dc, caption.c_str(), -1, &text, format | DT_END_ELLIPSIS);
    if (!caption.empty()) {
      const LONG gap = indent / 4;
      border.top = text.bottom / 2;
      ExcludeClipRect(dc, text.left - gap, text.top, text.right + gap, text.bottom);
    }
    if (const ThemeHandle theme{OpenThemeData(Handle(), L"BUTTON")}) {
      DrawThemeBackground(theme.get(), dc, BP_GROUPBOX, m_frame.Enabled() ? GBS_NORMAL : GBS_DISABLED,
                          &border, nullptr);
    } else {
      DrawEdge(dc, &border, EDGE_ETCHED, BF_RECT);
    }
    RestoreDC(dc, state);
    EndPaint(Handle(), &paint);
  }

  controls::Frame& m_frame;
};

}  // namespace

std::unique_ptr<controls::Peer> MakePictureBoxWindow(WindowContext& context, controls::PictureBox& box,
                                                     HWND parent) {
  return std::make_unique<PictureBoxWindow>(context, box, parent);
}

std::unique_ptr<controls::Peer> MakeFrameWindow(WindowContext& context, controls::Frame& frame, HWND parent) {
  return std::make_unique<FrameWindow>(context, frame, parent);
}

}  // namespace kxrestore::win32
