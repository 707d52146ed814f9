#include "platform/win32/label_window.h"

#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {

namespace {

constexpr DWORD kAlignmentMask = SS_TYPEMASK;

class LabelWindow final : public WindowPeer<controls::Peer> {
 public:
  LabelWindow(WindowContext& context, controls::Label& label, HWND parent)
      : WindowPeer(context, label), m_label(label) {
    // SS_NOTIFY lets the label see the pointer.
    Create(parent, WC_STATICW, Wide(label.Caption()), SS_NOTIFY | Alignment());
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
      SetWindowLongPtrW(Handle(), GWL_STYLE, (style & ~static_cast<LONG_PTR>(kAlignmentMask)) | Alignment());
      SendMessageW(Handle(), WM_SETFONT, reinterpret_cast<WPARAM>(OwnFont()), FALSE);
    }
    if ((flags & kCaptionFlag) != 0) SetWindowTextW(Handle(), Wide(m_label.Caption()).c_str());
    // Text that is aligned or broken by the width must not be copied along.
    if ((flags & (kGeometryFlag | kAppearanceFlag)) != 0) InvalidateRect(Handle(), nullptr, TRUE);
  }

 private:
  DWORD Alignment() const { return m_label.RightAligned() ? SS_RIGHT : SS_LEFT; }

  controls::Label& m_label;
};

}  // namespace

std::unique_ptr<controls::Peer> MakeLabelWindow(WindowContext& context, controls::Label& label, HWND parent) {
  return std::make_unique<LabelWindow>(context, label, parent);
}

}  // namespace kxrestore::win32
