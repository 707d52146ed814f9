// The keys that the form handles: Tab, accelerators, arrows among option buttons, Enter, Esc and F5. They
// follow the control models: order of creation, visible, enabled.
//
// Enter presses only the focused button. There is no default button, because the obvious one starts the
// restore. An accelerator that several controls share moves the focus among them and presses none; tabs are
// selected all the same.
#pragma once

#include <vector>

#include "controls/form.h"
#include "platform/win32/controls/control_window.h"

namespace kxrestore::win32 {

class FormKeys {
 public:
  FormKeys(WindowContext& context, controls::Form& form) : m_context(context), m_form(form) {}

  // Returns whether the message was a key that has been handled.
  bool Handle(const MSG& message);

  // Moves to the next or previous control that takes the focus; from nullptr to the first one.
  bool HandledByList(WPARAM key) const;
  void MoveFocus(const ControlWindow* from, bool back);

 private:
  struct Target {
    controls::Control* control;
    int tab;  // from 1, of a tab strip
  };

  bool KeyDown(WPARAM key, ControlWindow* focused);
  bool Letter(wchar_t letter, const ControlWindow* focused);
  bool Arrow(WPARAM key, const controls::Control& focused);
  bool NextTab(bool back);
  void Choose(const Target& target, bool alone);
  std::vector<controls::Control*> Reachable() const;
  void ShowCues() const;

  WindowContext& m_context;
  controls::Form& m_form;
};

}  // namespace kxrestore::win32
