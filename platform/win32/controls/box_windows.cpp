#include "platform/win32/controls/box_windows.h"

#include <algorithm>

#include "platform/win32/controls/accessible_name.h"
#include "platform/win32/wide_text.h"

namespace kxrestore::win32 {

namespace {

constexpr int kListRows = 8;         // that an open list shows
constexpr int kFieldBorder = 6;      // pixels of a closed combo box around its text field
constexpr int kLongestText = 32767;  // characters

class TextBoxWindow final : public WindowPeer<controls::Peer> {
 public:
  TextBoxWindow(WindowContext& context, controls::TextBox& box, HWND parent)
      : WindowPeer(context, box), m_box(box) {
    Create(parent, WC_EDITW, Wide(box.Text()), ES_AUTOHSCROLL, WS_EX_CLIENTEDGE);
    ShowLocked();
  }

  void OnCommand(unsigned code) override {
    if (code == EN_CHANGE && !m_showing) m_box.UserType(WindowText(Handle()));
  }

 protected:
  bool TextIsContent() const override { return true; }

  void OnFlush(unsigned flags) override {
    WindowPeer::OnFlush(flags);
    if ((flags & kAppearanceFlag) != 0) ShowLocked();
    if ((flags & kCaptionFlag) == 0 || WindowText(Handle()) == m_box.Text()) return;
    m_showing = true;
    SetWindowTextW(Handle(), Wide(m_box.Text()).c_str());
    m_showing = false;
  }

 private:
  void ShowLocked() { SendMessageW(Handle(), EM_SETREADONLY, m_box.Locked(), 0); }

  controls::TextBox& m_box;
  bool m_showing = false;
};

// The base of both kinds of combo box. The window of a closed one includes its list.
class ComboWindow : public WindowPeer<controls::Peer> {
 public:
  using WindowPeer::WindowPeer;

  bool WantsKey(WPARAM key) override {
    return (key == VK_ESCAPE || key == VK_RETURN || key == VK_DOWN) &&
           SendMessageW(Handle(), CB_GETDROPPEDSTATE, 0, 0);
  }
  void OnDpiChanged() override {
    WindowPeer::OnDpiChanged();
    FitField();
  }

 protected:
  bool TextIsContent() const override { return true; }

  RECT PixelBounds() const override {
    RECT bounds = WindowPeer::PixelBounds();
    bounds.bottom += kListRows * Context().ToPixels(240);
    return bounds;
  }

  // The height of the closed box is that of its field.
  void FitField() {
    const int field = Context().ToPixels(GetControl().Height()) - kFieldBorder;
    if (field > 0) SendMessageW(Handle(), CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), field);
  }

  void OnFlush(unsigned flags) override {
    WindowPeer::OnFlush(flags);
    if ((flags & kGeometryFlag) == 0) return;
    FitField();
    // While it was moved it had the height of the open list; repaint the area that it covered.
    RedrawWindow(GetAncestor(Handle(), GA_PARENT), nullptr, nullptr,
                 RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
  }

  void AppendItem(const std::string& item) {
    SendMessageW(Handle(), CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(Wide(item).c_str()));
  }

  std::string ChosenItem() const {
    const LRESULT chosen = SendMessageW(Handle(), CB_GETCURSEL, 0, 0);
    const LRESULT length = SendMessageW(Handle(), CB_GETLBTEXTLEN, chosen, 0);
    if (chosen == CB_ERR || length == CB_ERR) return {};
    std::wstring text(length + 1, L'\0');
    SendMessageW(Handle(), CB_GETLBTEXT, chosen, reinterpret_cast<LPARAM>(text.data()));
    text.resize(length);
    return Narrow(text);
  }
};

class ComboBoxWindow final : public ComboWindow {
 public:
  ComboBoxWindow(WindowContext& context, controls::ComboBox& box, HWND parent)
      : ComboWindow(context, box), m_box(box) {
    Create(parent, WC_COMBOBOXW, {}, CBS_DROPDOWN | CBS_AUTOHSCROLL | WS_VSCROLL);
    SendMessageW(Handle(), CB_LIMITTEXT, kLongestText, 0);
    FitField();
    ShowItems();
    SetWindowTextW(Handle(), Wide(box.Text()).c_str());
    COMBOBOXINFO parts{sizeof parts};
    if (!box.AccessibleName().empty() && GetComboBoxInfo(Handle(), &parts) && parts.hwndItem != nullptr) {
      AnnotateName(parts.hwndItem, Wide(box.AccessibleName()));
    }
  }

  void OnCommand(unsigned code) override {
    if (code == CBN_EDITCHANGE) m_box.UserType(WindowText(Handle()));
    if (code == CBN_SELCHANGE) m_box.UserType(ChosenItem());
  }

 protected:
  void OnFlush(unsigned flags) override {
    ComboWindow::OnFlush(flags);
    if ((flags & kItemsFlag) != 0) ShowItems();
    if ((flags & kCaptionFlag) != 0 && WindowText(Handle()) != m_box.Text()) {
      SetWindowTextW(Handle(), Wide(m_box.Text()).c_str());
    }
  }

 private:
  void ShowItems() {  // entries are only ever added
    for (; m_shown < m_box.Items().size(); ++m_shown) AppendItem(m_box.Items()[m_shown]);
  }

  controls::ComboBox& m_box;
  std::size_t m_shown = 0;
};

class DriveListBoxWindow final : public ComboWindow {
 public:
  DriveListBoxWindow(WindowContext& context, controls::DriveListBox& box, HWND parent)
      : ComboWindow(context, box), m_box(box) {
    Create(parent, WC_COMBOBOXW, {}, CBS_DROPDOWNLIST | WS_VSCROLL);
    FitField();
    ShowItems();
  }

  void OnCommand(unsigned code) override {
    // The user chooses the same drive again after changing the disc.
    if (code == CBN_SELCHANGE) m_box.UserSelect(ChosenItem());
  }

 protected:
  void OnFlush(unsigned flags) override {
    ComboWindow::OnFlush(flags);
    if ((flags & kItemsFlag) != 0) {
      ShowItems();
    } else if ((flags & kValueFlag) != 0) {
      ShowDrive();
    }
  }

 private:
  void ShowItems() {
    SendMessageW(Handle(), CB_RESETCONTENT, 0, 0);
    for (const std::string& drive : m_box.Drives()) AppendItem(drive);
    ShowDrive();
  }
  void ShowDrive() {
    const auto& drives = m_box.Drives();
    const auto place = std::find(drives.begin(), drives.end(), m_box.Drive());
    const auto chosen = place == drives.end() ? -1 : place - drives.begin();
    SendMessageW(Handle(), CB_SETCURSEL, static_cast<WPARAM>(chosen), 0);
  }

  controls::DriveListBox& m_box;
};

}  // namespace

std::unique_ptr<controls::Peer> MakeTextBoxWindow(WindowContext& context, controls::TextBox& box,
                                                  HWND parent) {
  return std::make_unique<TextBoxWindow>(context, box, parent);
}

std::unique_ptr<controls::Peer> MakeComboBoxWindow(WindowContext& context, controls::ComboBox& box,
                                                   HWND parent) {
  return std::make_unique<ComboBoxWindow>(context, box, parent);
}

std::unique_ptr<controls::Peer> MakeDriveListBoxWindow(WindowContext& context, controls::DriveListBox& box,
                                                       HWND parent) {
  return std::make_unique<DriveListBoxWindow>(context, box, parent);
}

}  // namespace kxrestore::win32
