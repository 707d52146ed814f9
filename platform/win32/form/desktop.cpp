#include "platform/win32/form/desktop.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "base/error.h"
#include "base/phrases.h"
#include "platform/win32/controls/clipboard.h"
#include "platform/win32/controls/window_classes.h"
#include "platform/win32/form/busy_window.h"
#include "platform/win32/form/day_dialog.h"
#include "platform/win32/form/form_window.h"
#include "platform/win32/form/make_windows.h"
#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {

namespace {

constexpr char kTitle[] = "KXRestore";
constexpr DWORD kPendingMilliseconds = 15;
constexpr DWORD kMaxPendingMilliseconds = 100;  // for one round, however many messages keep arriving

// Disables the thread's other windows. They are enabled again before the form's window is destroyed, so that
// the system activates one of them.
class OtherWindows {
 public:
  OtherWindows() : m_active(GetActiveWindow()) {
    EnumThreadWindows(GetCurrentThreadId(), Collect, reinterpret_cast<LPARAM>(this));
  }
  ~OtherWindows() { Enable(); }
  OtherWindows(const OtherWindows&) = delete;
  OtherWindows& operator=(const OtherWindows&) = delete;

  // The window that was active before, else the topmost; nullptr without one.
  HWND Host() const {
    for (const HWND window : {m_active, m_windows.empty() ? nullptr : m_windows.front()}) {
      if (window != nullptr && IsWindowVisible(window) && IsWindowEnabled(window)) return window;
    }
    return nullptr;
  }

  void Disable() {
    for (const HWND window : m_windows) EnableWindow(window, FALSE);
  }
  void Enable() {
    for (const HWND window : m_windows) {
      if (IsWindow(window)) EnableWindow(window, TRUE);
    }
  }

 private:
  static BOOL CALLBACK Collect(HWND window, LPARAM self) {
    if (!IsWindowVisible(window) || !IsWindowEnabled(window)) return TRUE;
    try {
      reinterpret_cast<OtherWindows*>(self)->m_windows.push_back(window);
    } catch (const std::bad_alloc&) {  // it stays enabled
    }
    return TRUE;
  }

  HWND m_active;
  std::vector<HWND> m_windows;
};

std::string Describe(const std::exception_ptr& error) {
  try {
    std::rethrow_exception(error);
  } catch (const Error& known) {
    return "(" + std::to_string(known.Number()) + ") " + known.Description();
  } catch (const std::exception& other) {
    return other.what();
  } catch (...) {
    return Say(Phrase::kUnexpectedError);
  }
}

}  // namespace

// A form while its windows exist.
struct Win32Desktop::Modal {
  Modal(HINSTANCE module, controls::Form& shown, Modal*& innermost)
      : form(shown), slot(innermost), outer(innermost), classes(module), context(module) {
    try {
      auto made = std::make_unique<FormWindow>(context, form, others.Host());
      window = made.get();
      form.AttachPeer(std::move(made));
    } catch (...) {
      TakeChildWindows(form);
      throw;
    }
    slot = this;
    others.Disable();
  }
  ~Modal() {
    const bool active = GetActiveWindow() == window->Handle();
    others.Enable();
    const HWND host = others.Host();
    if (active && host != nullptr) SetForegroundWindow(host);
    ShowWindow(window->Handle(), SW_HIDE);
    slot = outer;
    TakeChildWindows(form);
    form.AttachPeer(nullptr);
  }
  Modal(const Modal&) = delete;
  Modal& operator=(const Modal&) = delete;

  controls::Form& form;
  Modal*& slot;
  Modal* const outer;
  OtherWindows others;
  WindowClasses classes;
  WindowContext context;
  FormWindow* window = nullptr;
  std::optional<int> quitCode;
};

// The busy window. The other windows are enabled again before it is destroyed, so that the system activates
// one of them.
struct Win32Desktop::Busy {
  Busy(HINSTANCE module, controls::Form& form)
      : window(module, others.Host(), form.Caption().empty() ? kTitle : form.Caption(),
               [&form] { form.UserKey(controls::Key::kEscape); }) {
    if (window.Window() != nullptr) others.Disable();
  }
  ~Busy() { others.Enable(); }
  Busy(const Busy&) = delete;
  Busy& operator=(const Busy&) = delete;

  OtherWindows others;
  BusyWindow window;
};

Win32Desktop::Win32Desktop(HINSTANCE module) : m_module(module) {}

Win32Desktop::~Win32Desktop() = default;

namespace {

UINT NativeStyle(platform::MessageStyle style) {
  switch (style) {
    case platform::MessageStyle::kWarning:
      return MB_OK | MB_ICONEXCLAMATION;
    case platform::MessageStyle::kQuestion:
      return MB_YESNO | MB_ICONQUESTION;
    default:
      return MB_OK;
  }
}

platform::Answer AnswerOf(int button) {
  if (button == IDYES) return platform::Answer::kYes;
  return button == IDNO ? platform::Answer::kNo : platform::Answer::kOk;
}

}  // namespace

platform::Answer Win32Desktop::MessageBox(const std::string& text, platform::MessageStyle style,
                                          const std::string& title) {
  HWND owner = GetActiveWindow();
  if (m_modal != nullptr) {
    m_modal->context.FlushAll();
    owner = m_modal->window->Handle();
  }
  const UINT flags = NativeStyle(style) | (owner == nullptr ? MB_TASKMODAL | MB_SETFOREGROUND : 0U);
  const int button = MessageBoxW(owner, WideShownLines(text).c_str(),
                                 WideShown(title.empty() ? kTitle : title).c_str(), flags);
  m_lastPending = GetTickCount();
  return AnswerOf(button);
}

void Win32Desktop::ShowBusy(controls::Form& form, const std::string& text) {
  if (!m_busy) m_busy = std::make_unique<Busy>(m_module, form);
  m_busy->window.Show(text);
}

void Win32Desktop::HideBusy() {
  m_busy.reset();
}

void Win32Desktop::CopyText(const std::string& text) {
  win32::CopyText(m_modal != nullptr ? m_modal->window->Handle() : nullptr, Wide(text));
}

std::optional<platform::CivilTime> Win32Desktop::AskDay(const std::string& question,
                                                        const platform::CivilTime& first,
                                                        const platform::CivilTime& last) {
  HWND owner = GetActiveWindow();
  if (m_modal != nullptr) {
    m_modal->context.FlushAll();
    owner = m_modal->window->Handle();
  }
  const ActivationScope scope(m_modal != nullptr ? m_modal->context.ActivationContext()
                                                 : INVALID_HANDLE_VALUE);
  const auto day = ShowDayDialog(m_module, owner, question, first, last);
  m_lastPending = GetTickCount();
  return day;
}

platform::WindowSize Win32Desktop::SizeToStartWith(const platform::WindowSize& designed) const {
  constexpr int kPercent = 70;
  const HWND host = OtherWindows().Host();
  const WindowContext context(m_module);
  const int hostDpi = host == nullptr ? 0 : WindowDpi(host);
  const int dpi = hostDpi != 0 ? hostDpi : context.Dpi();
  MONITORINFO monitor{sizeof monitor};
  const POINT origin{};
  const HMONITOR screen = host != nullptr ? MonitorFromWindow(host, MONITOR_DEFAULTTONEAREST)
                                          : MonitorFromPoint(origin, MONITOR_DEFAULTTOPRIMARY);
  if (!GetMonitorInfoW(screen, &monitor)) return designed;
  const auto along = [dpi](LONG pixels, int design) {
    const int room = MulDiv(static_cast<int>(pixels), 1440, dpi);
    return std::min(std::max(room * kPercent / 100, design), room);
  };
  return {along(monitor.rcWork.right - monitor.rcWork.left, designed.width),
          along(monitor.rcWork.bottom - monitor.rcWork.top, designed.height)};
}

void Win32Desktop::DoEvents() {
  if (GetTickCount() - m_lastPending < kPendingMilliseconds) return;
  RunPending();
  m_lastPending = GetTickCount();
}

void Win32Desktop::RunPending() {
  if (m_modal != nullptr) {
    m_modal->context.Flush();
    m_modal->context.FlushThrottled();
  }
  const DWORD start = GetTickCount();
  MSG message{};
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    if (message.message == WM_QUIT) {
      // Posted again for the outer loops; the walk that processes messages must stop.
      PostQuitMessage(static_cast<int>(message.wParam));
      if (m_modal != nullptr) {
        m_modal->context.Guarded([this] { m_modal->form.UserKey(controls::Key::kEscape); });
      }
      return;
    }
    Process(message);
    if (GetTickCount() - start > kMaxPendingMilliseconds) break;
  }
  if (m_modal != nullptr) m_modal->context.Flush();
}

void Win32Desktop::Process(MSG& message) {
  if (m_modal != nullptr && m_modal->window->Keys().Handle(message)) return;
  if (m_busy && m_busy->window.Handle(message)) return;
  TranslateMessage(&message);
  DispatchMessageW(&message);
}

void Win32Desktop::ReportErrors() {
  while (const std::exception_ptr error = m_modal->context.TakeError()) {
    MessageBox(Describe(error), platform::MessageStyle::kWarning, {});
  }
}

void Win32Desktop::ShowModal(controls::Form& form) {
  for (const Modal* modal = m_modal; modal != nullptr; modal = modal->outer) {
    if (&modal->form == &form) return;
  }
  if (!form.IsOpen()) return;
  std::optional<int> quitCode;
  {
    Modal modal(m_module, form, m_modal);
    modal.window->Show();
    modal.context.Guarded([&form] { form.UserShown(); });
    RunLoop(modal);
    quitCode = modal.quitCode;
  }
  if (quitCode) PostQuitMessage(*quitCode);
}

void Win32Desktop::RunLoop(Modal& modal) {
  // The dialog also ends when other code destroys its window.
  while (modal.form.IsOpen() && modal.window->Handle() != nullptr) {
    modal.context.FlushAll();
    MSG message{};
    const BOOL got = GetMessageW(&message, nullptr, 0, 0);
    if (got == 0) modal.quitCode = static_cast<int>(message.wParam);
    if (got <= 0) return;
    Process(message);
    ReportErrors();
  }
}

}  // namespace kxrestore::win32
