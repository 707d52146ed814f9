// The desktop with windows: message boxes, pending messages, and modal forms.
//
// Used by one thread at a time, which shows the form. A modal form has no owner; the thread's other windows
// are disabled meanwhile.
#pragma once

#include <memory>

#include "platform/desktop.h"
#include "platform/win32/win32.h"

namespace kxrestore::win32 {

class Win32Desktop final : public platform::Desktop {
 public:
  // `module` holds the manifest of the common controls as resource 2.
  explicit Win32Desktop(HINSTANCE module);
  ~Win32Desktop() override;

  platform::Answer MessageBox(const std::string& text, platform::MessageStyle style,
                              const std::string& title) override;
  // Only reads the clock when called again within 15 ms.
  void DoEvents() override;
  void CopyText(const std::string& text) override;
  std::optional<platform::CivilTime> AskDay(const std::string& question, const platform::CivilTime& first,
                                            const platform::CivilTime& last) override;
  // About 70 % of the work area of the screen with the host's window, but at least the designed size if that
  // fits.
  platform::WindowSize SizeToStartWith(const platform::WindowSize& designed) const override;
  // The thread's other windows are disabled meanwhile.
  void ShowBusy(controls::Form& form, const std::string& text) override;
  void HideBusy() override;
  std::int64_t Milliseconds() const override { return static_cast<std::int64_t>(GetTickCount64()); }
  // Throws kxrestore::Error when the windows cannot be created. Does nothing for a form that is already
  // shown.
  void ShowModal(controls::Form& form) override;

 private:
  struct Modal;
  struct Busy;

  void RunLoop(Modal& modal);
  void RunPending();
  void Process(MSG& message);
  void ReportErrors();

  HINSTANCE m_module;
  Modal* m_modal = nullptr;  // the innermost form that is showing
  std::unique_ptr<Busy> m_busy;
  DWORD m_lastPending = 0;
};

}  // namespace kxrestore::win32
