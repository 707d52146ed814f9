#include "platform/win32/controls/progress_window.h"

#include <cmath>

namespace kxrestore::win32 {

namespace {

constexpr LPARAM kMarqueeStep = 50;  // milliseconds
constexpr int kSteps = 10000;        // of the native bar, whatever the control's own maximum

class ProgressWindow final : public WindowPeer<controls::Peer> {
 public:
  ProgressWindow(WindowContext& context, controls::ProgressBar& bar, HWND parent)
      : WindowPeer(context, bar), m_bar(bar) {
    Create(parent, PROGRESS_CLASSW, {}, PBS_SMOOTH);
    SendMessageW(Handle(), PBM_SETRANGE32, 0, kSteps);
    ShowKind();
    ShowValue();
  }
  bool TakesFocus() const override { return false; }

 protected:
  WindowContext::When Urgency(controls::Property property) const override {
    return property == controls::Property::kValue ? WindowContext::When::kThrottled
                                                  : WindowContext::When::kSoon;
  }
  void OnFlush(unsigned flags) override {
    WindowPeer::OnFlush(flags);
    if ((flags & kAppearanceFlag) != 0) ShowKind();
    if ((flags & kValueFlag) != 0) ShowValue();
  }

 private:
  void ShowKind() {
    const LONG_PTR style = GetWindowLongPtrW(Handle(), GWL_STYLE);
    const LONG_PTR wanted = m_bar.Indeterminate() ? style | PBS_MARQUEE : style & ~LONG_PTR{PBS_MARQUEE};
    if (wanted == style) return;
    SetWindowLongPtrW(Handle(), GWL_STYLE, wanted);
    SendMessageW(Handle(), PBM_SETMARQUEE, m_bar.Indeterminate() ? TRUE : FALSE, kMarqueeStep);
    InvalidateRect(Handle(), nullptr, TRUE);
  }

  void ShowValue() {
    const auto position = static_cast<WPARAM>(std::lround(m_bar.Value() / m_bar.Max() * kSteps));
    SendMessageW(Handle(), PBM_SETPOS, position, 0);
  }

  controls::ProgressBar& m_bar;
};

}  // namespace

std::unique_ptr<controls::Peer> MakeProgressWindow(WindowContext& context, controls::ProgressBar& bar,
                                                   HWND parent) {
  return std::make_unique<ProgressWindow>(context, bar, parent);
}

}  // namespace kxrestore::win32
