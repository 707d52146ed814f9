// The native window that shows one control. A peer class derives from `WindowPeer<Peer>` (or `<TreePeer>`,
// `<ListPeer>`), creates its window in its constructor by `Create`, and overrides the On... members it needs.
//
// The base class applies geometry, visibility, enabled state, z-order, focus, font, tool tip, accessible
// name, redraw freezes and the property `KXRestore.Control`. `OnFlush` applies changes before the thread next
// waits for a message. A frozen window is not painted until the last freeze is released.
//
// The form's window makes the peers by `Make...(WindowContext&, controls::X&, HWND parent)`, each declared in
// the header of its window and returning std::unique_ptr<controls::Peer>.
//
// On... members may throw: the context guards the calls. They may be re-entered, because form code processes
// pending messages.
#pragma once

#include <optional>

#include "controls/control.h"
#include "platform/win32/controls/window_context.h"

namespace kxrestore::win32 {

class ControlWindow {
 public:
  virtual ~ControlWindow();
  ControlWindow(const ControlWindow&) = delete;
  ControlWindow& operator=(const ControlWindow&) = delete;

  HWND Handle() const { return m_handle; }
  controls::Control& GetControl() const { return m_control; }
  WindowContext& Context() const { return m_context; }

  static ControlWindow* Of(controls::Control& control);  // nullptr when it has no window

  // The control window with this handle, or nullptr. `Enclosing` also accepts an inner window, such as the
  // edit field of a combo box.
  static ControlWindow* FromHandle(HWND handle);
  static ControlWindow* Enclosing(HWND handle);

  // Notifications that a parent forwards to the control that sent them. The defaults do nothing.
  virtual void OnCommand(unsigned /*code*/) {}
  virtual std::optional<LRESULT> OnNotify(NMHDR& /*header*/) { return std::nullopt; }
  virtual HBRUSH OnColor(HDC dc);  // WM_CTLCOLOR...

  // Handles a message of the window. Nothing: passes it on to the window's own procedure.
  virtual std::optional<LRESULT> OnMessage(UINT /*message*/, WPARAM /*wide*/, LPARAM /*extra*/) {
    return std::nullopt;
  }
  // Whether the window keeps a key (WM_KEYDOWN) that the form would handle otherwise: Esc, Enter, Tab and the
  // like.
  virtual bool WantsKey(WPARAM /*key*/) { return false; }
  // Handles a key (WM_KEYDOWN) before the form and the window. Returns whether it did.
  virtual bool HandleKey(WPARAM /*key*/) { return false; }
  // The window that gets the focus when Tab arrives here, or Shift+Tab when going `back`.
  virtual HWND TabTarget(bool /*back*/) const { return m_handle; }
  // The subject and the screen position of the control's menu; nothing when there is none. `pointer`: the
  // pointer on the screen, nothing when opened by the keyboard.
  struct MenuRequest {
    std::size_t subject = 0;  // see controls::Menu
    POINT place{};
  };
  virtual std::optional<MenuRequest> MenuAt(std::optional<POINT> pointer);
  // Appends the window's own items to those of form code.
  virtual void AddToMenu(controls::Menu& /*menu*/) {}
  virtual bool TakesFocus() const { return true; }  // by Tab, while shown and enabled

  // The resolution changed; fonts and geometry are renewed by the base.
  virtual void OnDpiChanged();

  // Applies pending changes. Called by the context.
  void FlushNow();

 protected:
  ControlWindow(WindowContext& context, controls::Control& control);

  // Creates the window with WS_CHILD and WS_CLIPSIBLINGS added, shown and enabled as the control is. Throws
  // kxrestore::Error with the system's error code.
  void Create(HWND parent, const wchar_t* windowClass, const std::wstring& text, DWORD style,
              DWORD exStyle = 0);
  // Adopts a window that a derived class created.
  void Attach(HWND handle);
  // For a control with additional windows, such as a footer: creates a window in the control's place, which
  // is the parent for Create and for the additional windows. OnArrange places all of them.
  HWND CreateAround(HWND parent);
  HWND Around() const { return m_around; }
  virtual void OnArrange(int /*width*/, int /*height*/) {}  // pixels
  void ArrangeLater() { Later(kArrangeFlag); }
  // Messages of the surrounding window, except notifications from the control's own window.
  virtual std::optional<LRESULT> OnAroundMessage(UINT /*message*/, WPARAM /*wide*/, LPARAM /*extra*/) {
    return std::nullopt;
  }
  // For destructors of derived classes: ends calls of their On... members.
  void Destroy();

  // Calls the window's own procedure.
  LRESULT PassOn(UINT message, WPARAM wide, LPARAM extra) const;

  // Marks the window as changed. OnFlush receives `flags`; derived classes define bits from kFirstOwnFlag on.
  enum : unsigned {
    kGeometryFlag = 1,
    kVisibleFlag = 2,
    kEnabledFlag = 4,
    kCaptionFlag = 8,
    kValueFlag = 16,
    kItemsFlag = 32,
    kAppearanceFlag = 64,
    kRefreshFlag = 128,
    kTaskProgressFlag = 256,
    kEmptyTextFlag = 512,
    kArrangeFlag = 1024,
    kFirstOwnFlag = 2048,
  };
  void Later(unsigned flags, WindowContext::When when = WindowContext::When::kSoon);
  // Applies geometry, visibility, enabled state and refresh. Overrides call this first.
  virtual void OnFlush(unsigned flags);
  // Whether a property may wait for the throttled round.
  virtual WindowContext::When Urgency(controls::Property /*property*/) const {
    return WindowContext::When::kSoon;
  }

  void ShowToolTip(const std::string& text);

  // Stops and resumes painting; the default sends WM_SETREDRAW and repaints everything on release.
  virtual void SetRedraw(bool redraw);
  bool Frozen() const { return m_freezes > 0; }

  // Whether the window's text is the control's contents, so that it cannot carry the accessible name.
  virtual bool TextIsContent() const { return false; }
  // What the window shows while it has no contents. Screen readers announce it after the accessible name;
  // SayName tells them when it may have changed.
  virtual std::string EmptyHint() const { return {}; }
  void SayName();
  // The control's rectangle in pixels of the parent. Combo boxes override it: their window includes the list.
  virtual RECT PixelBounds() const;
  // The same with a size that does not depend on the position. For buttons, so that all are equal, and for
  // containers, whose contents are laid out by width and height.
  RECT SizedBounds() const;
  virtual HFONT OwnFont() { return m_context.Font(); }

  // Peer calls, forwarded by WindowPeer.
  void PeerChanged(controls::Property property);
  void PeerBringToFront();
  void PeerSetFocus();
  void PeerRefresh();
  void PeerFreezeRedraw(bool frozen);

 private:
  static LRESULT CALLBACK Procedure(HWND handle, UINT message, WPARAM wide, LPARAM extra);
  std::optional<LRESULT> DispatchAround(UINT message, WPARAM wide, LPARAM extra);
  std::optional<LRESULT> FromChild(UINT message, LPARAM extra, unsigned code);
  void Arrange();
  // The outer window of the control.
  HWND Placed() const { return m_around != nullptr ? m_around : m_handle; }
  bool ShowMenu(LPARAM where);
  std::optional<LRESULT> Dispatch(UINT message, WPARAM wide, LPARAM extra);
  void NameWindow();
  void UnnameWindow(HWND handle);
  void ApplyVisibility();

  WindowContext& m_context;
  controls::Control& m_control;
  HWND m_handle = nullptr;
  HWND m_around = nullptr;
  ATOM m_name = 0;
  std::string m_toolTip, m_said;
  friend class WindowContext;
  int m_freezes = 0;
  bool m_redrawOff = false;
  bool m_movedWhileFrozen = false;
  unsigned m_pending = 0;
  bool m_listed[2] = {};  // by When
};

// Makes a ControlWindow a peer of the given interface.
template <class Base>
class WindowPeer : public Base, public ControlWindow {
 public:
  using ControlWindow::ControlWindow;
  void Changed(controls::Property property) override { PeerChanged(property); }
  void BringToFront() override { PeerBringToFront(); }
  void SetFocus() override { PeerSetFocus(); }
  void Refresh() override { PeerRefresh(); }
  void FreezeRedraw(bool frozen) override { PeerFreezeRedraw(frozen); }
};

}  // namespace kxrestore::win32
