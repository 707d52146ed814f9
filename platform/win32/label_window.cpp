#include "platform/win32/label_window.h"

#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {

namespace {

constexpr LONG_PTR kStyleMask = SS_TYPEMASK | SS_NOPREFIX;

class LabelWindow final : public WindowPeer<controls::Peer> {
 public:
  LabelWindow(WindowContext& context, controls::Label& label, HWND parent)
      : WindowPeer(context, label), m_label(label) {
    // SS_NOTIFY lets the label see the pointer.
    Create(parent, WC_STATICW, Wide(label.Caption()), SS_NOTIFY | Style());
  }
  bool TakesFocus() const override { return false; }

 protected:
  HFONT OwnFont() override { return Context().Font(m_label.FontName(), m_label.Bold()); }

  WindowContext::When Urgency(controls::Property property) const override {
    return property == controls::Property::kCaption ? WindowContext::When::kThrottled
                                                    : WindowContext::When::kSoon;
  }

  void OnFlush(unsigned flags) override {
    WindowPeer::OnFlush(flags);
    if ((flags & kAppearanceFlag) != 0) {
      const LONG_PTR style = GetWindowLongPtrW(Handle(), GWL_STYLE);
      SetWindowLongPtrW(Handle(), GWL_STYLE, (style & ~kStyleMask) | Style());
      SendMessageW(Handle(), WM_SETFONT, reinterpret_cast<WPARAM>(OwnFont()), FALSE);
    }
    if ((flags & kCaptionFlag) != 0) SetWindowTextW(Handle(), Wide(m_label.Caption()).c_str());
    // Text that is aligned or broken by the width must not be copied along.
    if ((flags & (kGeometryFlag | kAppearanceFlag)) != 0) InvalidateRect(Handle(), nullptr, TRUE);
  }

 private:
  DWORD Style() const {
    return (m_label.RightAligned() ? SS_RIGHT : SS_LEFT) | (m_label.UseMnemonic() ? 0 : SS_NOPREFIX);
  }

  controls::Label& m_label;
};

}  // namespace

std::unique_ptr<controls::Peer> MakeLabelWindow(WindowContext& context, controls::Label& label, HWND parent) {
  return std::make_unique<LabelWindow>(context, label, parent);
}

}  // namespace kxrestore::win32
