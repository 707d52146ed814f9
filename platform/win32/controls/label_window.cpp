#include "platform/win32/controls/label_window.h"

#include <algorithm>

#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {

namespace {

constexpr LONG_PTR kStyleMask = SS_TYPEMASK | SS_NOPREFIX;

// Text that does not fit ends in an ellipsis; a tool tip shows all of it.
class LabelWindow final : public WindowPeer<controls::Peer> {
 public:
  LabelWindow(WindowContext& context, controls::Label& label, HWND parent)
      : WindowPeer(context, label), m_label(label) {
    // SS_NOTIFY lets the label see the pointer.
    Create(parent, WC_STATICW, WideShownLines(label.Caption()), SS_NOTIFY | Style());
    Measure();
  }
  bool TakesFocus() const override { return false; }

  std::optional<LRESULT> OnMessage(UINT message, WPARAM /*wide*/, LPARAM /*extra*/) override {
    if (message != WM_PAINT || !m_cut) return std::nullopt;
    PAINTSTRUCT paint{};
    const HDC dc = BeginPaint(Handle(), &paint);
    RECT area{};
    GetClientRect(Handle(), &area);
    FillRect(dc, &area, OnColor(dc));
    Draw(dc, area, DT_END_ELLIPSIS | DT_EDITCONTROL);
    EndPaint(Handle(), &paint);
    return 0;
  }

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
    if ((flags & (kCaptionFlag | kGeometryFlag | kAppearanceFlag)) != 0) Measure();
    if ((flags & kCaptionFlag) != 0) SetWindowTextW(Handle(), WideShownLines(m_label.Caption()).c_str());
    // Text that is aligned or wrapped by the width must be repainted, not copied.
    if ((flags & (kGeometryFlag | kAppearanceFlag)) != 0 || m_cut) InvalidateRect(Handle(), nullptr, TRUE);
  }

 private:
  DWORD Style() const {
    return (m_label.RightAligned() ? SS_RIGHT : SS_LEFT) | (m_label.UseMnemonic() ? 0 : SS_NOPREFIX);
  }

  void Measure() {
    RECT area{};
    GetClientRect(Handle(), &area);
    RECT needed = area;
    if (const HDC dc = GetDC(Handle())) {
      Draw(dc, needed, DT_CALCRECT);
      ReleaseDC(Handle(), dc);
    }
    m_cut = needed.right > area.right || needed.bottom > area.bottom;
    if (m_label.ToolTipText().empty()) ShowToolTip(m_cut ? m_label.Caption() : std::string());
  }

  void Draw(HDC dc, RECT& area, UINT format) {
    const HGDIOBJ before = SelectObject(dc, OwnFont());
    format |= DT_WORDBREAK | DT_EXPANDTABS | (m_label.RightAligned() ? DT_RIGHT : DT_LEFT) |
              (m_label.UseMnemonic() ? 0U : UINT{DT_NOPREFIX});
    const std::wstring text = WideShownLines(m_label.Caption());
    DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &area, format);
    SelectObject(dc, before);
  }

  controls::Label& m_label;
  bool m_cut = false;
};

}  // namespace

std::unique_ptr<controls::Peer> MakeLabelWindow(WindowContext& context, controls::Label& label, HWND parent) {
  return std::make_unique<LabelWindow>(context, label, parent);
}

}  // namespace kxrestore::win32
