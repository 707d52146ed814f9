#include "platform/win32/form/form_keys.h"

#include <algorithm>

#include "controls/widgets.h"
#include "platform/win32/form/make_windows.h"
#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {

namespace {

using controls::Control;
using controls::Kind;

bool IsDown(int key) {
  return GetKeyState(key) < 0;
}

bool AcceptsUser(const Control& control) {
  for (const Control* c = &control; c != nullptr; c = c->GetContainer()) {
    if (!c->Visible() || !c->Enabled()) return false;
  }
  return true;
}

wchar_t Upper(wchar_t letter) {
  CharUpperBuffW(&letter, 1);
  return letter;
}

// The accelerator of a caption, 0 without one.
wchar_t UnderlinedLetter(const std::string& caption) {
  if (caption.find('&') == std::string::npos) return 0;
  const std::wstring wide = Wide(caption);
  for (std::size_t i = 0; i + 1 < wide.size(); ++i) {
    if (wide[i] != L'&') continue;
    if (wide[i + 1] != L'&') return Upper(wide[i + 1]);
    ++i;
  }
  return 0;
}

const std::string* CaptionOf(const Control& control) {
  switch (control.GetKind()) {
    case Kind::kLabel:
      if (!static_cast<const controls::Label&>(control).UseMnemonic()) return nullptr;
      [[fallthrough]];
    case Kind::kCommandButton:
    case Kind::kCheckBox:
    case Kind::kOptionButton:
      return &static_cast<const controls::Captioned&>(control).Caption();
    case Kind::kFrame:
      return &static_cast<const controls::Frame&>(control).Caption();
    default:
      return nullptr;
  }
}

// Tab stops once in a group of option buttons: at the chosen one.
bool IsSkippedOption(const Control& control) {
  if (control.GetKind() != Kind::kOptionButton) return false;
  if (static_cast<const controls::OptionButton&>(control).Value()) return false;
  const auto& siblings = control.GetContainer()->Children();
  return std::any_of(siblings.begin(), siblings.end(), [](const Control* sibling) {
    return sibling->GetKind() == Kind::kOptionButton && AcceptsUser(*sibling) &&
           static_cast<const controls::OptionButton*>(sibling)->Value();
  });
}

bool IsTabStop(Control& control) {
  const ControlWindow* const window = ControlWindow::Of(control);
  return window != nullptr && window->Handle() != nullptr && window->TakesFocus() && AcceptsUser(control);
}

void FocusByKey(Control& control, bool back = false) {
  ControlWindow* const window = ControlWindow::Of(control);
  if (window == nullptr || window->Handle() == nullptr) return;
  SetFocus(window->TabTarget(back));
  control.UserKeyboardEnter();
}

}  // namespace

std::vector<Control*> FormKeys::Reachable() const {
  std::vector<Control*> controls;
  ForEachControl(m_form, [&](Control& control) {
    if (AcceptsUser(control)) controls.push_back(&control);
  });
  return controls;
}

bool FormKeys::Handle(const MSG& message) {
  const bool isKey = message.message == WM_KEYDOWN || message.message == WM_SYSCHAR ||
                     (message.message == WM_SYSKEYDOWN && message.wParam == VK_MENU);
  if (!isKey) return false;
  const HWND form = m_context.FormHandle();
  if (message.hwnd != form && !IsChild(form, message.hwnd)) return false;
  const WindowContext::MessageScope scope(m_context);
  bool handled = false;
  m_context.Guarded([&] {
    ControlWindow* const focused = ControlWindow::Enclosing(message.hwnd);
    if (message.message == WM_KEYDOWN) {
      handled = KeyDown(message.wParam, focused);
    } else if (message.message == WM_SYSCHAR) {
      handled = Letter(Upper(static_cast<wchar_t>(message.wParam)), focused);
    } else {
      ShowCues();
    }
  });
  return handled;
}

bool FormKeys::KeyDown(WPARAM key, ControlWindow* focused) {
  if (focused != nullptr && focused->HandleKey(key)) return true;
  if (focused != nullptr && focused->WantsKey(key)) return false;
  const Kind kind = focused == nullptr ? Kind::kForm : focused->GetControl().GetKind();
  switch (key) {
    case VK_ESCAPE:
      m_form.UserKey(controls::Key::kEscape);
      return true;
    case VK_F5:
      m_form.UserKey(controls::Key::kF5);
      return true;
    case VK_RETURN:
      if (kind == Kind::kComboBox) static_cast<controls::ComboBox&>(focused->GetControl()).UserEnter();
      if (kind == Kind::kCommandButton)
        static_cast<controls::CommandButton&>(focused->GetControl()).UserClick();
      return kind != Kind::kTreeView && kind != Kind::kAutoSelect;
    case VK_TAB:
      ShowCues();
      if (IsDown(VK_CONTROL)) return NextTab(IsDown(VK_SHIFT));
      MoveFocus(focused, IsDown(VK_SHIFT));
      return true;
    case 'F':
      return IsDown(VK_CONTROL) && HandledByList(key);
    case VK_DOWN:
      if (kind == Kind::kComboBox && !IsDown(VK_MENU)) {
        return static_cast<controls::ComboBox&>(focused->GetControl()).UserDown();
      }
      [[fallthrough]];
    case VK_UP:
    case VK_LEFT:
    case VK_RIGHT:
      return kind == Kind::kOptionButton && Arrow(key, focused->GetControl());
    default:
      return false;
  }
}

// Keys for the list of the current page, or for the restore list if the page has none, wherever the focus is.
bool FormKeys::HandledByList(WPARAM key) const {
  for (Control* const control : Reachable()) {
    if (control->GetKind() != Kind::kAutoSelect) continue;
    ControlWindow* const window = ControlWindow::Of(*control);
    if (window != nullptr && window->HandleKey(key)) return true;
  }
  return false;
}

// Splitters come last: from the tree on one side Tab leads to the one on the other.
void FormKeys::MoveFocus(const ControlWindow* from, bool back) {
  std::vector<Control*> all;
  ForEachControl(m_form, [&](Control& control) { all.push_back(&control); });
  std::stable_partition(all.begin(), all.end(),
                        [](const Control* control) { return control->GetKind() != Kind::kSplitBar; });
  if (back) std::reverse(all.begin(), all.end());
  const Control* const start = from == nullptr ? nullptr : &from->GetControl();
  const auto place = std::find(all.begin(), all.end(), start);
  if (place != all.end()) std::rotate(all.begin(), place + 1, all.end());
  for (Control* const control : all) {
    if (control == start || !IsTabStop(*control) || IsSkippedOption(*control)) continue;
    FocusByKey(*control, back);
    return;
  }
}

bool FormKeys::Letter(wchar_t letter, const ControlWindow* focused) {
  std::vector<Target> before;
  std::vector<Target> targets;  // starting after the focus
  bool behind = false;
  for (Control* const control : Reachable()) {
    auto& list = behind ? targets : before;
    if (control->GetKind() == Kind::kTabStrip) {
      const auto& strip = static_cast<const controls::TabStrip&>(*control);
      for (int tab = 1; tab <= static_cast<int>(strip.Tabs().size()); ++tab) {
        if (tab != strip.SelectedIndex() && UnderlinedLetter(strip.Tabs()[tab - 1].caption) == letter) {
          list.push_back({control, tab});
        }
      }
    } else if (const std::string* const caption = CaptionOf(*control)) {
      if (UnderlinedLetter(*caption) == letter) list.push_back({control, 0});
    }
    behind |= focused != nullptr && control == &focused->GetControl();
  }
  targets.insert(targets.end(), before.begin(), before.end());
  if (targets.empty()) return false;
  Choose(targets.front(), targets.size() == 1);
  return true;
}

void FormKeys::Choose(const Target& target, bool alone) {
  ShowCues();
  Control& control = *target.control;
  switch (control.GetKind()) {
    case Kind::kTabStrip:
      FocusByKey(control);
      static_cast<controls::TabStrip&>(control).UserSelect(target.tab);
      break;
    case Kind::kCommandButton:
      FocusByKey(control);
      if (alone) static_cast<controls::CommandButton&>(control).UserClick();
      break;
    case Kind::kCheckBox:
      FocusByKey(control);
      if (alone) static_cast<controls::CheckBox&>(control).UserClick();
      break;
    case Kind::kOptionButton:
      FocusByKey(control);
      if (alone) static_cast<controls::OptionButton&>(control).UserClick();
      break;
    default:  // a caption of what follows it
      MoveFocus(ControlWindow::Of(control), false);
      break;
  }
}

bool FormKeys::Arrow(WPARAM key, const Control& focused) {
  std::vector<Control*> options;
  for (Control* const sibling : focused.GetContainer()->Children()) {
    if (sibling->GetKind() == Kind::kOptionButton && AcceptsUser(*sibling)) options.push_back(sibling);
  }
  if (key == VK_UP || key == VK_LEFT) std::reverse(options.begin(), options.end());
  const auto place = std::find(options.begin(), options.end(), &focused);
  if (place == options.end()) return true;
  Control& next = place + 1 == options.end() ? *options.front() : **(place + 1);
  FocusByKey(next);
  static_cast<controls::OptionButton&>(next).UserClick();
  return true;
}

bool FormKeys::NextTab(bool back) {
  for (Control* const control : Reachable()) {
    if (control->GetKind() != Kind::kTabStrip) continue;
    auto& strip = static_cast<controls::TabStrip&>(*control);
    const int count = static_cast<int>(strip.Tabs().size());
    if (count == 0) return false;
    FocusByKey(strip);
    strip.UserSelect((strip.SelectedIndex() - 1 + (back ? count - 1 : 1)) % count + 1);
    return true;
  }
  return false;
}

// Underlined letters and focus rectangles stay hidden until the keyboard is used.
void FormKeys::ShowCues() const {
  SendMessageW(m_context.FormHandle(), WM_CHANGEUISTATE,
               MAKEWPARAM(UIS_CLEAR, UISF_HIDEACCEL | UISF_HIDEFOCUS), 0);
}

}  // namespace kxrestore::win32
