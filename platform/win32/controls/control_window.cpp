#include "platform/win32/controls/control_window.h"

#include <mutex>
#include <unordered_map>

#include "base/error.h"
#include "base/phrases.h"
#include "platform/win32/controls/accessible_name.h"
#include "platform/win32/controls/popup_menu.h"
#include "platform/win32/controls/window_classes.h"
#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {

namespace {

constexpr wchar_t kNameProperty[] = L"KXRestore.Control";
constexpr UINT kMoveFlags = SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOOWNERZORDER;

bool HasVisibleStyle(HWND window) {
  return (GetWindowLongPtrW(window, GWL_STYLE) & WS_VISIBLE) != 0;
}

// The windows of controls. Window properties, and the subclassing functions built on them, are slower: on
// some systems each access calls the window server, and a tree that removes 100,000 items sends as many
// messages.
struct Registered {
  ControlWindow* window;  // nullptr after the control has released its window
  WNDPROC procedure;      // the window's own
};

class Registry {
 public:
  void Set(HWND handle, Registered entry) {
    const std::lock_guard lock(m_mutex);
    m_entries[handle] = entry;
  }
  Registered Get(HWND handle) const {
    const std::lock_guard lock(m_mutex);
    const auto entry = m_entries.find(handle);
    return entry == m_entries.end() ? Registered{nullptr, DefWindowProcW} : entry->second;
  }
  void Remove(HWND handle) {
    const std::lock_guard lock(m_mutex);
    m_entries.erase(handle);
  }

 private:
  mutable std::mutex m_mutex;
  std::unordered_map<HWND, Registered> m_entries;
};

Registry& Windows() {
  static Registry windows;
  return windows;
}

bool HoldsFocus(HWND window) {
  const HWND focus = GetFocus();
  return focus != nullptr && (focus == window || IsChild(window, focus));
}

}  // namespace

ControlWindow::ControlWindow(WindowContext& context, controls::Control& control)
    : m_context(context), m_control(control) {}

ControlWindow::~ControlWindow() {
  m_context.Forget(*this);
  Destroy();
}

void ControlWindow::Destroy() {
  if (m_handle == nullptr) return;
  const HWND handle = m_handle;
  m_handle = nullptr;
  m_context.RemoveTexts(m_around != nullptr ? m_around : handle);
  Windows().Set(handle, {nullptr, Windows().Get(handle).procedure});
  UnnameWindow(handle);
  DestroyWindow(handle);
  if (const HWND around = std::exchange(m_around, nullptr)) {
    Windows().Set(around, {nullptr, DefWindowProcW});
    DestroyWindow(around);
  }
}

ControlWindow* ControlWindow::Of(controls::Control& control) {
  return dynamic_cast<ControlWindow*>(control.GetPeer());
}

ControlWindow* ControlWindow::FromHandle(HWND handle) {
  return Windows().Get(handle).window;
}

ControlWindow* ControlWindow::Enclosing(HWND handle) {
  while (handle != nullptr) {
    if (ControlWindow* const window = FromHandle(handle)) return window;
    handle = GetAncestor(handle, GA_PARENT);
  }
  return nullptr;
}

HWND ControlWindow::CreateAround(HWND parent) {
  const RECT bounds = PixelBounds();
  m_around =
      CreateWindowExW(WS_EX_CONTROLPARENT, kContainerClass, L"",
                      WS_CHILD | WS_CLIPSIBLINGS | WS_CLIPCHILDREN | (m_control.Visible() ? WS_VISIBLE : 0),
                      bounds.left, bounds.top, bounds.right - bounds.left, bounds.bottom - bounds.top, parent,
                      nullptr, m_context.Module(), nullptr);
  if (m_around == nullptr) {
    throw Error(static_cast<int>(GetLastError()), Say(Phrase::kWindowNotMade, {m_control.Name()}),
                "KXRestore");
  }
  Windows().Set(m_around, {this, DefWindowProcW});
  SetWindowLongPtrW(m_around, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Procedure));
  return m_around;
}

void ControlWindow::Arrange() {
  if (m_around == nullptr || m_handle == nullptr) return;
  RECT area{};
  GetClientRect(m_around, &area);
  OnArrange(area.right, area.bottom);
}

void ControlWindow::Create(HWND parent, const wchar_t* windowClass, const std::wstring& text, DWORD style,
                           DWORD exStyle) {
  style |= WS_CHILD | WS_CLIPSIBLINGS;
  if (m_control.Visible() || m_around != nullptr) style |= WS_VISIBLE;
  if (!m_control.Enabled()) style |= WS_DISABLED;
  const RECT bounds = PixelBounds();
  const ActivationScope scope(m_context.ActivationContext());
  const HWND handle = CreateWindowExW(exStyle, windowClass, text.c_str(), style, bounds.left, bounds.top,
                                      bounds.right - bounds.left, bounds.bottom - bounds.top, parent, nullptr,
                                      m_context.Module(), nullptr);
  if (handle == nullptr) {
    throw Error(static_cast<int>(GetLastError()), Say(Phrase::kWindowNotMade, {m_control.Name()}),
                "KXRestore");
  }
  Attach(handle);
}

void ControlWindow::Attach(HWND handle) {
  m_handle = handle;
  const auto own = reinterpret_cast<WNDPROC>(GetWindowLongPtrW(handle, GWLP_WNDPROC));
  Windows().Set(handle, {this, own});
  SetWindowLongPtrW(handle, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Procedure));
  NameWindow();
  SendMessageW(handle, WM_SETFONT, reinterpret_cast<WPARAM>(OwnFont()), FALSE);
  SayName();
  ShowToolTip(m_control.ToolTipText());
}

// Tools that drive the dialog find a control's window by the name that form code uses.
void ControlWindow::NameWindow() {
  m_name = GlobalAddAtomW(Wide(m_control.Name()).c_str());
  if (m_name != 0) {
    SetPropW(m_handle, kNameProperty, reinterpret_cast<HANDLE>(static_cast<ULONG_PTR>(m_name)));
  }
}

void ControlWindow::UnnameWindow(HWND handle) {
  RemovePropW(handle, kNameProperty);
  if (m_name != 0) GlobalDeleteAtom(m_name);
  m_name = 0;
}

void ControlWindow::SayName() {
  std::string name = m_control.AccessibleName();
  if (const std::string hint = EmptyHint(); !name.empty() && !hint.empty()) name += ". " + hint;
  if (name == m_said) return;
  m_said = name;
  AnnotateName(m_handle, Wide(name));
  if (!TextIsContent()) SetWindowTextW(m_handle, Wide(name).c_str());
}

void ControlWindow::ShowToolTip(const std::string& text) {
  if (m_toolTip == text) return;
  m_toolTip = text;
  m_context.SetToolTip(m_handle, text);
}

HBRUSH ControlWindow::OnColor(HDC dc) {
  SetTextColor(dc, GetSysColor(COLOR_BTNTEXT));
  SetBkColor(dc, GetSysColor(COLOR_3DFACE));
  return GetSysColorBrush(COLOR_3DFACE);
}

void ControlWindow::OnDpiChanged() {
  if (m_handle == nullptr) return;
  SendMessageW(m_handle, WM_SETFONT, reinterpret_cast<WPARAM>(OwnFont()), FALSE);
  Later(kGeometryFlag | kRefreshFlag);
}

RECT ControlWindow::PixelBounds() const {
  // Converts each edge, so that rectangles that touch in twips touch in pixels.
  const auto pixels = [this](int twips) { return static_cast<LONG>(m_context.ToPixels(twips)); };
  const int left = m_control.Left();
  const int top = m_control.Top();
  return {pixels(left), pixels(top), pixels(left + m_control.Width()), pixels(top + m_control.Height())};
}

RECT ControlWindow::SizedBounds() const {
  const int left = m_context.ToPixels(m_control.Left());
  const int top = m_context.ToPixels(m_control.Top());
  return {left, top, left + m_context.ToPixels(m_control.Width()),
          top + m_context.ToPixels(m_control.Height())};
}

void ControlWindow::Later(unsigned flags, WindowContext::When when) {
  m_pending |= flags;
  m_context.Later(*this, when);
}

void ControlWindow::FlushNow() {
  if (m_pending == 0 || m_handle == nullptr) return;
  const unsigned flags = std::exchange(m_pending, 0);
  m_context.Guarded([&] { OnFlush(flags); });
}

void ControlWindow::OnFlush(unsigned flags) {
  // Disabling and hiding come first, while the window can still pass the focus on.
  if ((flags & kEnabledFlag) != 0 && (IsWindowEnabled(m_handle) != FALSE) != m_control.Enabled()) {
    if (!m_control.Enabled() && HoldsFocus(m_handle) && m_context.MoveFocusOff) m_context.MoveFocusOff(*this);
    EnableWindow(m_handle, m_control.Enabled());
  }
  if ((flags & kGeometryFlag) != 0) {
    const RECT bounds = PixelBounds();
    SetWindowPos(Placed(), nullptr, bounds.left, bounds.top, bounds.right - bounds.left,
                 bounds.bottom - bounds.top, kMoveFlags | (Frozen() ? SWP_NOREDRAW : 0U));
    m_movedWhileFrozen |= Frozen();
  }
  if ((flags & kArrangeFlag) != 0) Arrange();
  if ((flags & kVisibleFlag) != 0 && !Frozen()) ApplyVisibility();
  if ((flags & kRefreshFlag) != 0 && !Frozen()) InvalidateRect(m_handle, nullptr, TRUE);
}

void ControlWindow::ApplyVisibility() {
  const bool visible = m_control.Visible();
  if (HasVisibleStyle(Placed()) == visible) return;
  if (!visible && HoldsFocus(Placed()) && m_context.MoveFocusOff) m_context.MoveFocusOff(*this);
  ShowWindow(Placed(), visible ? SW_SHOWNA : SW_HIDE);
}

// WM_SETREDRAW clears and sets WS_VISIBLE, even on hidden windows, so it is sent only to visible ones, and
// visibility is restored afterwards.
void ControlWindow::SetRedraw(bool redraw) {
  if (!redraw) {
    m_redrawOff = HasVisibleStyle(m_handle);
    if (m_redrawOff) SendMessageW(m_handle, WM_SETREDRAW, FALSE, 0);
    return;
  }
  if (m_redrawOff) SendMessageW(m_handle, WM_SETREDRAW, TRUE, 0);
  m_redrawOff = false;
  ApplyVisibility();
  if (m_movedWhileFrozen) {
    m_movedWhileFrozen = false;
    RedrawWindow(GetAncestor(m_handle, GA_PARENT), nullptr, nullptr,
                 RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
  } else if (m_control.Visible()) {
    RedrawWindow(m_handle, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
  }
}

void ControlWindow::PeerFreezeRedraw(bool frozen) {
  if (frozen) {
    if (m_freezes++ == 0 && m_handle != nullptr) SetRedraw(false);
  } else if (m_freezes > 0 && --m_freezes == 0 && m_handle != nullptr) {
    FlushNow();
    SetRedraw(true);
  }
}

void ControlWindow::PeerChanged(controls::Property property) {
  using controls::Property;
  if (m_handle == nullptr) return;
  unsigned flag = 0;
  switch (property) {
    case Property::kGeometry:
      flag = kGeometryFlag;
      break;
    case Property::kVisible:
      flag = kVisibleFlag;
      break;
    case Property::kEnabled:
      flag = kEnabledFlag;
      break;
    case Property::kCaption:
      flag = kCaptionFlag;
      break;
    case Property::kToolTipText:
      ShowToolTip(m_control.ToolTipText());
      return;
    case Property::kValue:
      flag = kValueFlag;
      break;
    case Property::kItems:
      flag = kItemsFlag;
      break;
    case Property::kAppearance:
    case Property::kWindowState:
      flag = kAppearanceFlag;
      break;
    case Property::kTaskProgress:
      flag = kTaskProgressFlag;
      break;
    case Property::kEmptyText:
      flag = kEmptyTextFlag | kRefreshFlag;
      break;
  }
  Later(flag, Urgency(property));
}

void ControlWindow::PeerBringToFront() {
  if (m_handle != nullptr)
    SetWindowPos(Placed(), HWND_TOP, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_NOOWNERZORDER);
}

void ControlWindow::PeerSetFocus() {
  if (m_handle == nullptr) return;
  m_context.Flush();  // it may just have been shown or enabled
  ::SetFocus(m_handle);
}

void ControlWindow::PeerRefresh() {
  if (m_handle != nullptr) Later(kRefreshFlag);
}

std::optional<ControlWindow::MenuRequest> ControlWindow::MenuAt(std::optional<POINT> pointer) {
  MenuRequest request;
  ClientToScreen(m_handle, &request.place);
  if (pointer) request.place = *pointer;
  return request;
}

// Returns whether the control showed a menu. `where`: the parameter of WM_CONTEXTMENU.
bool ControlWindow::ShowMenu(LPARAM where) {
  std::optional<POINT> pointer;
  if (where != -1) pointer = {static_cast<short>(LOWORD(where)), static_cast<short>(HIWORD(where))};
  const auto request = MenuAt(pointer);
  if (!request) return false;
  controls::Menu menu(request->subject);
  m_control.UserMenu(menu);
  AddToMenu(menu);
  if (menu.Empty()) return false;
  ShowPopupMenu(m_handle, menu, request->place);
  return true;
}

LRESULT ControlWindow::PassOn(UINT message, WPARAM wide, LPARAM extra) const {
  return CallWindowProcW(Windows().Get(m_handle).procedure, m_handle, message, wide, extra);
}

LRESULT CALLBACK ControlWindow::Procedure(HWND handle, UINT message, WPARAM wide, LPARAM extra) {
  const Registered entry = Windows().Get(handle);
  if (message == WM_NCDESTROY) Windows().Remove(handle);
  if (entry.window == nullptr) return CallWindowProcW(entry.procedure, handle, message, wide, extra);
  WindowContext& context = entry.window->m_context;
  const WindowContext::MessageScope scope(context);
  std::optional<LRESULT> result;
  context.Guarded([&] {
    result = handle == entry.window->m_around ? entry.window->DispatchAround(message, wide, extra)
                                              : entry.window->Dispatch(message, wide, extra);
  });
  return result ? *result : CallWindowProcW(entry.procedure, handle, message, wide, extra);
}

// Notifications of a child window: of another control, or of the control's own window in the surrounding one.
std::optional<LRESULT> ControlWindow::FromChild(UINT message, LPARAM extra, unsigned code) {
  if (message == WM_COMMAND) {
    ControlWindow* const child = FromHandle(reinterpret_cast<HWND>(extra));
    if (child == nullptr) return std::nullopt;
    child->OnCommand(code);
    return 0;
  }
  auto& header = *reinterpret_cast<NMHDR*>(extra);
  ControlWindow* const child = FromHandle(header.hwndFrom);
  if (child == nullptr) return std::nullopt;
  return child->OnNotify(header).value_or(0);
}

std::optional<LRESULT> ControlWindow::DispatchAround(UINT message, WPARAM wide, LPARAM extra) {
  switch (message) {
    case WM_NOTIFY:
    case WM_COMMAND:
      if (const auto result = FromChild(message, extra, HIWORD(wide))) return result;
      break;
    case WM_SIZE:
      Arrange();
      break;
    case WM_NCDESTROY:
      m_around = nullptr;
      return std::nullopt;
    default:
      break;
  }
  return OnAroundMessage(message, wide, extra);
}

std::optional<LRESULT> ControlWindow::Dispatch(UINT message, WPARAM wide, LPARAM extra) {
  switch (message) {
    case WM_COMMAND:
      if (const auto result = FromChild(message, extra, HIWORD(wide))) return result;
      break;
    case WM_NOTIFY:
      if (reinterpret_cast<NMHDR*>(extra)->hwndFrom == m_handle) break;
      if (const auto result = FromChild(message, extra, 0)) return result;
      break;
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN:
      if (ControlWindow* const child = FromHandle(reinterpret_cast<HWND>(extra))) {
        return reinterpret_cast<LRESULT>(child->OnColor(reinterpret_cast<HDC>(wide)));
      }
      break;
    case WM_SETCURSOR:
      if (LOWORD(extra) == HTCLIENT && m_context.FormPointer() != nullptr) {
        SetCursor(m_context.FormPointer());
        return TRUE;
      }
      break;
    case WM_MOUSEMOVE:
      m_control.UserMouseMove();
      break;
    case WM_CONTEXTMENU:
      if (ShowMenu(extra)) return 0;
      break;
    case WM_NCDESTROY: {  // destroyed by other code
      const HWND handle = std::exchange(m_handle, nullptr);
      UnnameWindow(handle);
      return std::nullopt;
    }
    default:
      break;
  }
  return OnMessage(message, wide, extra);
}

}  // namespace kxrestore::win32
