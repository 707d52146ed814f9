#include "platform/win32/form/form_window.h"

#include <algorithm>

#include "base/error.h"
#include "base/phrases.h"
#include "platform/win32/controls/window_classes.h"
#include "platform/win32/form/make_windows.h"
#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {

namespace {

constexpr DWORD kStyle =
    WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MAXIMIZEBOX | WS_MINIMIZEBOX | WS_CLIPCHILDREN;
constexpr DWORD kExStyle = WS_EX_CONTROLPARENT | WS_EX_APPWINDOW;
constexpr UINT kComeForward = WM_APP + 1;
constexpr UINT kDpiChanged = 0x02E0;  // WM_DPICHANGED, which older headers lack

RECT WorkArea(const RECT& bounds) {
  MONITORINFO monitor{sizeof monitor};
  GetMonitorInfoW(MonitorFromRect(&bounds, MONITOR_DEFAULTTONEAREST), &monitor);
  return monitor.rcWork;
}

SIZE SizeOf(const RECT& bounds) {
  return {bounds.right - bounds.left, bounds.bottom - bounds.top};
}

BOOL CALLBACK SendOn(HWND window, LPARAM message) {
  SendMessageW(window, static_cast<UINT>(message), 0, 0);
  return TRUE;
}

}  // namespace

int WindowDpi(HWND window) {
  using GetDpi = UINT(WINAPI*)(HWND);
  const auto getDpi = reinterpret_cast<GetDpi>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), "GetDpiForWindow")));
  return getDpi == nullptr ? 0 : static_cast<int>(getDpi(window));
}

FormWindow::FormWindow(WindowContext& context, controls::Form& form, HWND host)
    : WindowPeer(context, form), m_form(form), m_keys(context, form) {
  {
    const ActivationScope scope(context.ActivationContext());
    const HWND handle = CreateWindowExW(kExStyle, kFormClass, WideShown(form.Caption()).c_str(), kStyle, 0, 0,
                                        0, 0, nullptr, nullptr, context.Module(), nullptr);
    if (handle == nullptr) {
      throw Error(static_cast<int>(GetLastError()), Say(Phrase::kWindowNotMade, {form.Name()}), "KXRestore");
    }
    context.SetFormHandle(handle);
    Attach(handle);
  }
  SendMessageW(Handle(), WM_CHANGEUISTATE, UIS_INITIALIZE, 0);
  context.MoveFocusOff = [this](ControlWindow& window) { m_keys.MoveFocus(&window, false); };
  Place(host);
  TellFrame();
  ShowIcon();
  ShowPointer();
  MakeChildWindows(context, form, Handle());
  m_ready = true;
}

void FormWindow::Place(HWND host) {
  if (const int dpi = WindowDpi(host != nullptr ? host : Handle())) Context().SetDpi(dpi);
  RECT bounds = PixelBounds();
  SIZE size = SizeOf(bounds);
  RECT around{};
  if (m_form.placement.known) {
    around = {Context().ToPixels(m_form.placement.left), Context().ToPixels(m_form.placement.top), 0, 0};
    around.right = around.left + size.cx;
    around.bottom = around.top + size.cy;
  } else if (host == nullptr || IsIconic(host) || !GetWindowRect(host, &around)) {
    const POINT origin{};
    MONITORINFO monitor{sizeof monitor};
    GetMonitorInfoW(MonitorFromPoint(origin, MONITOR_DEFAULTTOPRIMARY), &monitor);
    around = monitor.rcWork;
  }
  const RECT work = WorkArea(around);
  const SIZE room = SizeOf(work);
  const SIZE outer = SizeOf(around);
  size.cx = std::min(size.cx, room.cx);
  size.cy = std::min(size.cy, room.cy);
  const LONG left = std::clamp(around.left + (outer.cx - size.cx) / 2, work.left, work.right - size.cx);
  const LONG top = std::clamp(around.top + (outer.cy - size.cy) / 2, work.top, work.bottom - size.cy);
  SetWindowPos(Handle(), nullptr, left, top, size.cx, size.cy, SWP_NOZORDER | SWP_NOACTIVATE);
}

void FormWindow::TellFrame() {
  if (IsIconic(Handle())) return;
  RECT outer{};
  RECT inner{};
  GetWindowRect(Handle(), &outer);
  GetClientRect(Handle(), &inner);
  m_form.SetFrame(Context().ToTwips(SizeOf(outer).cx - inner.right),
                  Context().ToTwips(SizeOf(outer).cy - inner.bottom));
}

void FormWindow::Show() {
  const bool maximized = m_form.WindowState() == controls::WindowState::kMaximized;
  Context().FlushAll();
  ShowWindow(Handle(), maximized ? SW_SHOWMAXIMIZED : SW_SHOW);
  SetForegroundWindow(Handle());
  ReportSize();
  ReportPlace();
  FocusFirst();
  Context().FlushAll();
  RedrawWindow(Handle(), nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
}

void FormWindow::FocusFirst() {
  controls::Control* first = nullptr;
  ForEachControl(m_form, [&](controls::Control& control) {
    if (first == nullptr && control.GetKind() == controls::Kind::kTreeView && control.IsShown() &&
        control.Enabled()) {
      first = &control;
    }
  });
  if (first != nullptr) {
    first->SetFocus();
  } else {
    m_keys.MoveFocus(nullptr, false);
  }
}

void FormWindow::RestoreFocus() {
  if (m_focus != nullptr && IsChild(Handle(), m_focus) && IsWindowVisible(m_focus) &&
      IsWindowEnabled(m_focus)) {
    ::SetFocus(m_focus);
  } else {
    m_keys.MoveFocus(nullptr, false);
  }
}

RECT FormWindow::PixelBounds() const {
  return {0, 0, Context().ToPixels(m_form.Width()), Context().ToPixels(m_form.Height())};
}

void FormWindow::Changed(controls::Property property) {
  // Wakes the modal loop after an unload.
  if (property == controls::Property::kVisible) {
    PostMessageW(Handle(), WM_NULL, 0, 0);
    return;
  }
  WindowPeer::Changed(property);
  if (property == controls::Property::kAppearance) ShowPointer();
}

void FormWindow::OnFlush(unsigned flags) {
  if ((flags & kEnabledFlag) != 0) EnableWindow(Handle(), m_form.Enabled());
  if ((flags & kCaptionFlag) != 0) SetWindowTextW(Handle(), WideShown(m_form.Caption()).c_str());
  if ((flags & kAppearanceFlag) != 0) {
    ShowIcon();
    const auto state = m_form.WindowState();
    const bool shown = IsWindowVisible(Handle()) != FALSE;
    if (shown && state == controls::WindowState::kMaximized && !IsZoomed(Handle())) {
      ShowWindow(Handle(), SW_MAXIMIZE);
    } else if (shown && state == controls::WindowState::kMinimized && !IsIconic(Handle())) {
      ShowWindow(Handle(), SW_MINIMIZE);
    } else if (shown && state == controls::WindowState::kNormal &&
               (IsZoomed(Handle()) || IsIconic(Handle()))) {
      ShowWindow(Handle(), SW_RESTORE);
    }
  }
  if ((flags & kGeometryFlag) != 0 && !IsZoomed(Handle()) && !IsIconic(Handle())) {
    const SIZE size = SizeOf(PixelBounds());
    SetWindowPos(Handle(), nullptr, 0, 0, size.cx, size.cy, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
  }
  if ((flags & kTaskProgressFlag) != 0) m_taskbar.Show(Handle(), m_form.GetTaskProgress());
  if ((flags & kRefreshFlag) != 0) InvalidateRect(Handle(), nullptr, TRUE);
}

// A size equal to the form's in pixels is not reported, or rounding would make the form grow.
void FormWindow::ReportSize() {
  if (!m_ready) return;
  controls::WindowState state = controls::WindowState::kNormal;
  if (IsIconic(Handle())) state = controls::WindowState::kMinimized;
  if (IsZoomed(Handle())) state = controls::WindowState::kMaximized;
  RECT bounds{};
  GetWindowRect(Handle(), &bounds);
  const SIZE size = SizeOf(bounds);
  const SIZE known = SizeOf(PixelBounds());
  const bool same = size.cx == known.cx && size.cy == known.cy;
  if (same && state == m_form.WindowState()) return;
  const bool keeps = same || state == controls::WindowState::kMinimized;
  m_form.UserResize(keeps ? m_form.Width() : Context().ToTwips(size.cx),
                    keeps ? m_form.Height() : Context().ToTwips(size.cy), state);
  Context().Flush();
}

void FormWindow::ReportPlace() {
  if (!m_ready || !IsWindowVisible(Handle()) || IsIconic(Handle()) || IsZoomed(Handle())) return;
  RECT bounds{};
  GetWindowRect(Handle(), &bounds);
  m_form.placement = {true, Context().ToTwips(bounds.left), Context().ToTwips(bounds.top)};
}

void FormWindow::ShowPointer() {
  LPCWSTR pointer = nullptr;
  switch (m_form.MousePointer()) {
    case controls::MousePointer::kDefault:
      break;
    case controls::MousePointer::kSizeNS:
      pointer = IDC_SIZENS;
      break;
    case controls::MousePointer::kSizeWE:
      pointer = IDC_SIZEWE;
      break;
    case controls::MousePointer::kHourglass:
      pointer = IDC_WAIT;
      break;
  }
  const HCURSOR cursor = pointer == nullptr ? nullptr : LoadCursorW(nullptr, pointer);
  if (cursor == Context().FormPointer()) return;
  Context().SetFormPointer(cursor);
  // Sets it at once: the pointer may not move before the work is done.
  POINT place{};
  GetCursorPos(&place);
  const HWND under = WindowFromPoint(place);
  if (under != nullptr && (under == Handle() || IsChild(Handle(), under)) && GetCapture() == nullptr) {
    SendMessageW(under, WM_SETCURSOR, reinterpret_cast<WPARAM>(under), MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
  }
}

void FormWindow::ShowIcon() {
  const auto load = [&](int metric) {
    const int pixels = GetSystemMetrics(metric);
    IconHandle icon;
    if (!m_form.IconPath().empty()) {
      icon.reset(static_cast<HICON>(
          LoadImageW(nullptr, Wide(m_form.IconPath()).c_str(), IMAGE_ICON, pixels, pixels, LR_LOADFROMFILE)));
    }
    return icon ? std::move(icon) : LoadFormIcon(Context().Module(), pixels);
  };
  IconHandle small = load(SM_CXSMICON);
  IconHandle large = load(SM_CXICON);
  SendMessageW(Handle(), WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(small.get()));
  SendMessageW(Handle(), WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(large.get()));
  m_smallIcon = std::move(small);
  m_largeIcon = std::move(large);
}

void FormWindow::ChangeDpi(int dpi, const RECT& bounds) {
  Context().SetDpi(dpi);
  SetWindowPos(Handle(), nullptr, bounds.left, bounds.top, SizeOf(bounds).cx, SizeOf(bounds).cy,
               SWP_NOZORDER | SWP_NOACTIVATE);
  ForEachControl(m_form, [](controls::Control& control) {
    if (ControlWindow* const window = ControlWindow::Of(control)) window->OnDpiChanged();
  });
  TellFrame();
  Context().Flush();
  ReportSize();
}

std::optional<LRESULT> FormWindow::OnMessage(UINT message, WPARAM wide, LPARAM extra) {
  switch (message) {
    case WM_SIZE:
      ReportSize();
      return 0;
    case WM_MOVE:
      ReportPlace();
      return 0;
    case WM_GETMINMAXINFO: {
      auto& limits = *reinterpret_cast<MINMAXINFO*>(extra);
      limits.ptMinTrackSize.x =
          std::max<LONG>(limits.ptMinTrackSize.x, Context().ToPixels(m_form.MinimumWidth()));
      limits.ptMinTrackSize.y =
          std::max<LONG>(limits.ptMinTrackSize.y, Context().ToPixels(m_form.MinimumHeight()));
      return 0;
    }
    case WM_CLOSE:
      m_form.UserClose();
      return 0;
    case WM_ACTIVATE:
      if (LOWORD(wide) == WA_INACTIVE) {
        const HWND focus = GetFocus();
        if (focus != nullptr && IsChild(Handle(), focus)) m_focus = focus;
      }
      return std::nullopt;
    case WM_ACTIVATEAPP:
      // Without an owner the window may be behind the host's. Posted, because activation is still in
      // progress.
      if (wide != FALSE) PostMessageW(Handle(), kComeForward, 0, 0);
      return std::nullopt;
    case kComeForward:
      if (const HWND active = GetActiveWindow(); active != nullptr && !IsWindowEnabled(active)) {
        SetForegroundWindow(GetLastActivePopup(Handle()));
      }
      return 0;
    case WM_SETFOCUS:
      if (m_ready) RestoreFocus();
      return 0;
    case WM_SYSCOLORCHANGE:
      EnumChildWindows(Handle(), SendOn, WM_SYSCOLORCHANGE);
      return std::nullopt;
    case kDpiChanged:
      ChangeDpi(HIWORD(wide), *reinterpret_cast<const RECT*>(extra));
      return 0;
    default:
      return std::nullopt;
  }
}

}  // namespace kxrestore::win32
