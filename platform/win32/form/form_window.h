// The window of a form with the windows of its controls. It is created hidden.
#pragma once

#include "controls/form.h"
#include "platform/win32/controls/control_window.h"
#include "platform/win32/form/form_keys.h"
#include "platform/win32/form/taskbar_progress.h"
#include "platform/win32/services/icons.h"

namespace kxrestore::win32 {

// The resolution of a window; 0 on systems where all windows share one.
int WindowDpi(HWND window);

class FormWindow final : public WindowPeer<controls::Peer> {
 public:
  // Without a stored position the form is centred on `host`, or on the screen if that is nullptr.
  FormWindow(WindowContext& context, controls::Form& form, HWND host);

  void Show();
  FormKeys& Keys() { return m_keys; }

  void Changed(controls::Property property) override;
  std::optional<LRESULT> OnMessage(UINT message, WPARAM wide, LPARAM extra) override;

 protected:
  void OnFlush(unsigned flags) override;
  RECT PixelBounds() const override;
  WindowContext::When Urgency(controls::Property property) const override {
    return property == controls::Property::kTaskProgress ? WindowContext::When::kThrottled
                                                         : WindowContext::When::kSoon;
  }

 private:
  void Place(HWND host);
  void TellFrame();
  void ReportSize();
  void ReportPlace();
  void ShowPointer();
  void ShowIcon();
  void ChangeDpi(int dpi, const RECT& bounds);
  void RestoreFocus();
  void FocusFirst();

  controls::Form& m_form;
  FormKeys m_keys;
  TaskbarProgress m_taskbar;
  IconHandle m_smallIcon;
  IconHandle m_largeIcon;
  HWND m_focus = nullptr;  // while the window is not active
  bool m_ready = false;    // the controls have their windows
};

}  // namespace kxrestore::win32
