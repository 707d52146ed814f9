#include "platform/win32/container_windows.h"

#include "platform/win32/wide_text.h"
#include "platform/win32/window_classes.h"

namespace kxrestore::win32 {

namespace {

constexpr DWORD kContainerStyle = WS_CLIPCHILDREN;

class PictureBoxWindow final : public WindowPeer<controls::Peer> {
 public:
  PictureBoxWindow(WindowContext& context, controls::PictureBox& box, HWND parent)
      : WindowPeer(context, box) {
    Create(parent, kContainerClass, {}, kContainerStyle, WS_EX_CONTROLPARENT);
  }
  bool TakesFocus() const override { return false; }
};

// The border and the caption are a group box that lies behind the controls; it lets clicks through.
class FrameWindow final : public WindowPeer<controls::Peer> {
 public:
  FrameWindow(WindowContext& context, controls::Frame& frame, HWND parent)
      : WindowPeer(context, frame), m_frame(frame) {
    Create(parent, kContainerClass, Wide(frame.Caption()), kContainerStyle, WS_EX_CONTROLPARENT);
    const ActivationScope scope(context.ActivationContext());
    m_border = CreateWindowExW(WS_EX_TRANSPARENT, WC_BUTTONW, Wide(frame.Caption()).c_str(),
                               WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | BS_GROUPBOX, 0, 0, 0, 0, Handle(),
                               nullptr, context.Module(), nullptr);
    FitBorder();
    SendMessageW(m_border, WM_SETFONT, reinterpret_cast<WPARAM>(OwnFont()), FALSE);
  }
  bool TakesFocus() const override { return false; }

  std::optional<LRESULT> OnMessage(UINT message, WPARAM /*wide*/, LPARAM /*extra*/) override {
    if (message == WM_SIZE) FitBorder();
    return std::nullopt;
  }

  void OnDpiChanged() override {
    WindowPeer::OnDpiChanged();
    SendMessageW(m_border, WM_SETFONT, reinterpret_cast<WPARAM>(OwnFont()), FALSE);
  }

 protected:
  void OnFlush(unsigned flags) override {
    WindowPeer::OnFlush(flags);
    if ((flags & kCaptionFlag) == 0) return;
    SetWindowTextW(Handle(), Wide(m_frame.Caption()).c_str());
    SetWindowTextW(m_border, Wide(m_frame.Caption()).c_str());
  }

 private:
  void FitBorder() {
    RECT inner{};
    GetClientRect(Handle(), &inner);
    SetWindowPos(m_border, HWND_BOTTOM, 0, 0, inner.right, inner.bottom, SWP_NOACTIVATE);
  }

  controls::Frame& m_frame;
  HWND m_border = nullptr;
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
