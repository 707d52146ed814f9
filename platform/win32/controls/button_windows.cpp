#include "platform/win32/controls/button_windows.h"

#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {

namespace {

template <class Button>
class ButtonWindow : public WindowPeer<controls::Peer> {
 public:
  ButtonWindow(WindowContext& context, Button& button, HWND parent, DWORD style)
      : WindowPeer(context, button), m_button(button) {
    Create(parent, WC_BUTTONW, Wide(button.Caption()), style);
  }

  void OnCommand(unsigned code) override {
    if (code == BN_CLICKED) m_button.UserClick();
  }

 protected:
  void OnFlush(unsigned flags) override {
    WindowPeer::OnFlush(flags);
    if ((flags & kCaptionFlag) != 0) SetWindowTextW(Handle(), Wide(m_button.Caption()).c_str());
    if ((flags & kValueFlag) != 0) ShowValue();
  }
  virtual void ShowValue() {}

  RECT PixelBounds() const override { return SizedBounds(); }

  Button& m_button;
};

class CommandButtonWindow final : public ButtonWindow<controls::CommandButton> {
 public:
  CommandButtonWindow(WindowContext& context, controls::CommandButton& button, HWND parent)
      : ButtonWindow(context, button, parent, BS_PUSHBUTTON) {}

  // Draws the button that Enter would press as the default button.
  std::optional<LRESULT> OnMessage(UINT message, WPARAM /*wide*/, LPARAM /*extra*/) override {
    if (message == WM_SETFOCUS) SendMessageW(Handle(), BM_SETSTYLE, BS_DEFPUSHBUTTON, TRUE);
    if (message == WM_KILLFOCUS) SendMessageW(Handle(), BM_SETSTYLE, BS_PUSHBUTTON, TRUE);
    return std::nullopt;
  }
};

template <class Button>
class TickWindow final : public ButtonWindow<Button> {
 public:
  TickWindow(WindowContext& context, Button& button, HWND parent, DWORD style)
      : ButtonWindow<Button>(context, button, parent, style) {
    ShowValue();
  }

 protected:
  void ShowValue() override {
    SendMessageW(this->Handle(), BM_SETCHECK, this->m_button.Value() ? BST_CHECKED : BST_UNCHECKED, 0);
  }
};

}  // namespace

std::unique_ptr<controls::Peer> MakeCommandButtonWindow(WindowContext& context,
                                                        controls::CommandButton& button, HWND parent) {
  return std::make_unique<CommandButtonWindow>(context, button, parent);
}

std::unique_ptr<controls::Peer> MakeCheckBoxWindow(WindowContext& context, controls::CheckBox& box,
                                                   HWND parent) {
  return std::make_unique<TickWindow<controls::CheckBox>>(context, box, parent, BS_CHECKBOX | BS_MULTILINE);
}

std::unique_ptr<controls::Peer> MakeOptionButtonWindow(WindowContext& context, controls::OptionButton& option,
                                                       HWND parent) {
  return std::make_unique<TickWindow<controls::OptionButton>>(context, option, parent, BS_RADIOBUTTON);
}

}  // namespace kxrestore::win32
