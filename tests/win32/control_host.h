// A top-level window in place of the form. It forwards notifications to the control's window. The fixture
// runs messages and measures times.
#pragma once

#include <algorithm>
#include <utility>

#include "controls/form.h"
#include "platform/win32/controls/window_classes.h"
#include "tests/win32/vocabulary.h"

namespace kxrestore::win32::test {

class ControlHost : public testing::Test {
 protected:
  // The time that a call takes, in milliseconds of this thread's processor time, on which other load has
  // little effect.
  template <class Call>
  static double Measure(Call&& call) {
    const double before = Used();
    call();
    return Used() - before;
  }

  ControlHost() {
    WNDCLASSW description{};
    description.lpfnWndProc = Procedure;
    description.hInstance = GetModuleHandleW(nullptr);
    description.lpszClassName = L"KXRestore.Test.Host";
    description.hbrBackground = reinterpret_cast<HBRUSH>(static_cast<LONG_PTR>(COLOR_3DFACE + 1));
    RegisterClassW(&description);
    host = CreateWindowExW(0, description.lpszClassName, L"Host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 760,
                           600, nullptr, nullptr, description.hInstance, nullptr);
    context.SetFormHandle(host);
  }
  ~ControlHost() override { DestroyWindow(host); }

  // Creates the control's window and gives it the focus.
  template <class Control, class Make>
  void Show(Control& control, Make&& make) {
    control.Move(0, 0, 10'000, 7'500);
    control.AttachPeer(make(context, control, host));
    window = WindowOf(control);
    ::SetFocus(window);
    Pump();
  }

  // Handles one message, if any, and brings windows into line with their controls. Returns whether there was
  // one.
  bool Step() {
    bool any = false;
    const double took = Measure([&] {
      MSG message;
      any = PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0;
      if (any) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
      }
      context.FlushAll();
    });
    m_longest = std::max(m_longest, took);
    return any;
  }
  // The longest time that a message took since the last call.
  double TakeLongest() { return std::exchange(m_longest, 0.0); }

  void Pump() {
    while (Step() || Step()) {  // FlushAll may have posted a message
    }
    if (const std::exception_ptr error = context.TakeError()) std::rethrow_exception(error);
  }
  template <class Condition>
  bool PumpUntil(Condition&& condition) {
    const DWORD start = GetTickCount();
    for (;;) {
      Pump();
      if (condition()) return true;
      if (GetTickCount() - start > 60'000) return false;
      MsgWaitForMultipleObjects(0, nullptr, FALSE, 5, QS_ALLINPUT);
    }
  }
  void Press(POINT point, UINT message = WM_LBUTTONDOWN) {
    const LPARAM place = MAKELPARAM(point.x, point.y);
    PostMessageW(window, message, MK_LBUTTON, place);
    PostMessageW(window, WM_LBUTTONUP, 0, place);
    Pump();
  }
  void Key(WPARAM key) {
    PostKey(window, key);
    Pump();
  }
  int DrawnPixels(const RECT& area) const {
    const HDC dc = GetDC(window);
    int drawn = 0;
    for (int x = area.left; x < area.right; ++x) {
      for (int y = area.top; y < area.bottom; ++y) drawn += GetRValue(GetPixel(dc, x, y)) < 0xE0 ? 1 : 0;
    }
    ReleaseDC(window, dc);
    return drawn;
  }

  HWND host = nullptr, window = nullptr;
  WindowClasses classes{GetModuleHandleW(nullptr)};
  WindowContext context{GetModuleHandleW(nullptr)};
  controls::Form form{"frmRestore"};

 private:
  static double Used() {
    FILETIME created, exited, kernel, user;
    GetThreadTimes(GetCurrentThread(), &created, &exited, &kernel, &user);
    const auto ticks = [](const FILETIME& time) {
      return static_cast<std::int64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
    };
    return static_cast<double>(ticks(kernel) + ticks(user)) / 10'000;
  }
  static LRESULT CALLBACK Procedure(HWND handle, UINT message, WPARAM wide, LPARAM extra) {
    if (message == WM_NOTIFY) {
      auto& header = *reinterpret_cast<NMHDR*>(extra);
      if (ControlWindow* const control = ControlWindow::FromHandle(header.hwndFrom)) {
        LRESULT result = 0;
        control->Context().Guarded([&] { result = control->OnNotify(header).value_or(0); });
        return result;
      }
    }
    return DefWindowProcW(handle, message, wide, extra);
  }

  double m_longest = 0;
};

}  // namespace kxrestore::win32::test
