#include "platform/win32/form/make_windows.h"

#include "platform/win32/controls/box_windows.h"
#include "platform/win32/controls/button_windows.h"
#include "platform/win32/controls/container_windows.h"
#include "platform/win32/controls/control_window.h"
#include "platform/win32/controls/label_window.h"
#include "platform/win32/controls/progress_window.h"
#include "platform/win32/controls/split_window.h"
#include "platform/win32/controls/tab_window.h"
#include "platform/win32/list/list_window.h"
#include "platform/win32/tree/tree_window.h"

namespace kxrestore::win32 {

namespace {

std::unique_ptr<controls::Peer> MakeWindow(WindowContext& context, controls::Control& control, HWND parent) {
  using controls::Kind;
  switch (control.GetKind()) {
    case Kind::kPictureBox:
      return MakePictureBoxWindow(context, static_cast<controls::PictureBox&>(control), parent);
    case Kind::kFrame:
      return MakeFrameWindow(context, static_cast<controls::Frame&>(control), parent);
    case Kind::kLabel:
      return MakeLabelWindow(context, static_cast<controls::Label&>(control), parent);
    case Kind::kCommandButton:
      return MakeCommandButtonWindow(context, static_cast<controls::CommandButton&>(control), parent);
    case Kind::kCheckBox:
      return MakeCheckBoxWindow(context, static_cast<controls::CheckBox&>(control), parent);
    case Kind::kOptionButton:
      return MakeOptionButtonWindow(context, static_cast<controls::OptionButton&>(control), parent);
    case Kind::kComboBox:
      return MakeComboBoxWindow(context, static_cast<controls::ComboBox&>(control), parent);
    case Kind::kTextBox:
      return MakeTextBoxWindow(context, static_cast<controls::TextBox&>(control), parent);
    case Kind::kTabStrip:
      return MakeTabWindow(context, static_cast<controls::TabStrip&>(control), parent);
    case Kind::kTreeView:
      return MakeTreeWindow(context, static_cast<controls::TreeView&>(control), parent);
    case Kind::kAutoSelect:
      return MakeListWindow(context, static_cast<controls::AutoSelect&>(control), parent);
    case Kind::kDriveListBox:
      return MakeDriveListBoxWindow(context, static_cast<controls::DriveListBox&>(control), parent);
    case Kind::kProgressBar:
      return MakeProgressWindow(context, static_cast<controls::ProgressBar&>(control), parent);
    case Kind::kSplitBar:
      return MakeSplitWindow(context, static_cast<controls::SplitBar&>(control), parent);
    case Kind::kForm:
      break;
  }
  return nullptr;
}

}  // namespace

void MakeChildWindows(WindowContext& context, controls::Container& container, HWND parent) {
  for (controls::Control* const child : container.Children()) {
    child->AttachPeer(MakeWindow(context, *child, parent));
    const ControlWindow* const window = ControlWindow::Of(*child);
    auto* const inner = dynamic_cast<controls::Container*>(child);
    if (inner != nullptr && window != nullptr) MakeChildWindows(context, *inner, window->Handle());
  }
  for (controls::Control* const child : container.ZOrder()) {
    if (controls::Peer* const peer = child->GetPeer()) peer->BringToFront();
  }
}

void TakeChildWindows(controls::Container& container) {
  for (controls::Control* const child : container.Children()) {
    if (auto* const inner = dynamic_cast<controls::Container*>(child)) TakeChildWindows(*inner);
    child->AttachPeer(nullptr);
  }
}

}  // namespace kxrestore::win32
