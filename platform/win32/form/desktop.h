// The desktop with real windows: message boxes, pending messages, and forms that run modally.
//
// For one thread at a time, the one that shows the form. A modal form has no owner window; the thread's other
// windows are disabled while it shows.
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
  // Free but for a look at the clock while the last time is less than 15 ms ago.
  void DoEvents() override;
  void CopyText(const std::string& text) override;
  std::optional<platform::CivilTime> AskDay(const std::string& question, const platform::CivilTime& first,
                                            const platform::CivilTime& last) override;
  // About 70 % of the work area of the screen on which the host's window stands, and not less than designed
  // where there is room.
  platform::WindowSize SizeToStartWith(const platform::WindowSize& designed) const override;
  // The thread's other windows are disabled meanwhile.
  void ShowBusy(controls::Form& form, const std::string& text) override;
  void HideBusy() override;
  std::int64_t Milliseconds() const override { return static_cast<std::int64_t>(GetTickCount64()); }
  // Throws kxrestore::Error when the windows cannot be made. A form that is already showing is left alone.
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
