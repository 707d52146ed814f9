#include "platform/win32/controls/progress_window.h"

#include <cmath>

namespace kxrestore::win32 {

namespace {

constexpr int kSteps = 10000;  // of the native bar, whatever the control's own maximum

class ProgressWindow final : public WindowPeer<controls::Peer> {
 public:
  ProgressWindow(WindowContext& context, controls::ProgressBar& bar, HWND parent)
      : WindowPeer(context, bar), m_bar(bar) {
    Create(parent, PROGRESS_CLASSW, {}, PBS_SMOOTH);
    SendMessageW(Handle(), PBM_SETRANGE32, 0, kSteps);
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
    if ((flags & kValueFlag) != 0) ShowValue();
  }

 private:
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
