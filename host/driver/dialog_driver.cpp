#include "host/driver/dialog_driver.h"

#include <array>
#include <cstdio>
#include <optional>

#include "base/utf16.h"

namespace kxrestore::driver {
namespace {

using Clock = std::chrono::steady_clock;

constexpr wchar_t kFormClass[] = L"KXRestore.frmRestore";
constexpr wchar_t kMessageClass[] = L"#32770";
constexpr wchar_t kMenuClass[] = L"#32768";
constexpr UINT kGetMenu = 0x01E1;  // of a menu: its handle
constexpr int kMessageTextId = 0xFFFF;

// Labels that count during a walk change about ten times a second; text that stays unchanged this long is
// final.
constexpr auto kSettled = std::chrono::milliseconds(300);

bool EndsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

std::optional<int> Number(const std::string& text) {
  if (text.empty() || text.size() > 6 || text.find_first_not_of("0123456789") != std::string::npos) return {};
  return std::stoi(text);
}

std::vector<std::string> Split(const std::string& path) {
  std::vector<std::string> parts;
  std::size_t start = 0;
  // A drive is one text including its backslash: "C:\".
  if (path.size() >= 3 && path[1] == ':' && path[2] == '\\') {
    parts.push_back(path.substr(0, 3));
    start = 3;
  }
  while (start < path.size()) {
    const std::size_t end = path.find('\\', start);
    parts.push_back(path.substr(start, end - start));
    start = end == std::string::npos ? path.size() : end + 1;
  }
  return parts;
}

struct NamedKey {
  const char* name;
  WPARAM key;
};
constexpr std::array<NamedKey, 5> kKeys = {
    {{"ESC", VK_ESCAPE}, {"ENTER", VK_RETURN}, {"SPACE", VK_SPACE}, {"TAB", VK_TAB}, {"DELETE", VK_DELETE}}};

WPARAM KeyOf(const std::string& name) {
  for (const NamedKey& entry : kKeys) {
    if (name == entry.name) return entry.key;
  }
  const auto number = name.size() > 1 && name[0] == 'F' ? Number(name.substr(1)) : std::nullopt;
  if (!number || *number < 1 || *number > 12) throw DriverError("there is no key " + name);
  return static_cast<WPARAM>(VK_F1 + *number - 1);
}

int ButtonId(const std::string& button) {
  if (button == "YES") return IDYES;
  if (button == "NO") return IDNO;
  if (button == "OK") return IDOK;
  throw DriverError("a message box is answered YES, NO or OK, not " + button);
}

}  // namespace

HWND DialogDriver::WaitForForm() const {
  HWND form = nullptr;
  WaitFor(m_timeout, "the dialog", [&] { return (form = VisibleWindow(kFormClass, m_process)) != nullptr; });
  return form;
}

void DialogDriver::WaitUntilClosed() const {
  WaitFor(m_timeout, "the dialog to close", [&] { return VisibleWindow(kFormClass, m_process) == nullptr; });
}

HWND DialogDriver::Control(const std::string& name) const {
  const HWND form = WaitForForm();
  HWND control = nullptr;
  WaitFor(m_timeout, "the control " + name, [&] {
    for (HWND window : Inner(form)) {
      if (NameOf(window) == name) control = window;
    }
    return control != nullptr;
  });
  return control;
}

HWND DialogDriver::Usable(const std::string& name) const {
  const HWND control = Control(name);
  WaitFor(m_timeout, name + " to be usable",
          [&] { return IsWindowVisible(control) && IsWindowEnabled(control); });
  return control;
}

void DialogDriver::SelectRun(const std::string& which) const {
  const TreeDriver sets(Usable("tvwSets"), m_timeout);
  const auto number = Number(which);
  HTREEITEM run = nullptr;
  WaitFor(m_timeout, "the run " + which, [&] {
    int position = 0;
    for (HTREEITEM item : sets.Level(2)) {
      if (++position == number || sets.Text(item) == which) run = item;
    }
    return run != nullptr;
  });
  const std::string text = sets.Text(run);
  sets.Click(run);
  WaitFor(m_timeout, "the run " + text + " to be chosen", [&] { return EndsWith(Text("lblSetName"), text); });
  ExpectSettled("lblTreeCount", " file(s).");
}

void DialogDriver::SelectSet(const std::string& name) const {
  const TreeDriver sets(Usable("tvwSets"), m_timeout);
  const std::vector<HTREEITEM> top = sets.Level(0);
  if (top.empty()) throw DriverError("the set tree is empty");
  sets.Click(sets.Find({sets.Text(top.front()), name}));
}

void DialogDriver::SelectNode(const std::string& path) const {
  const TreeDriver sets(Usable("tvwSets"), m_timeout);
  sets.Click(sets.Find(Split(path)));
}

void DialogDriver::Tick(const std::string& path) const {
  const TreeDriver details(Usable("tvwDetails"), m_timeout);
  details.Toggle(details.Find(Split(path)));
}

bool DialogDriver::NodeTicked(const std::string& path) const {
  const TreeDriver details(Usable("tvwDetails"), m_timeout);
  return details.Ticked(details.Find(Split(path)));
}

int DialogDriver::Row(const ListDriver& entries, const std::string& list, const std::string& which) const {
  const auto number = Number(which);
  if (!number) return entries.Find(which);
  WaitFor(m_timeout, "entry " + which + " of " + list, [&] { return entries.Count() >= *number; });
  return *number - 1;
}

void DialogDriver::TickEntry(const std::string& list, const std::string& which) const {
  const ListDriver entries(Usable(list), m_timeout);
  entries.Toggle(Row(entries, list, which));
}

void DialogDriver::SelectEntry(const std::string& list, const std::string& which) const {
  const ListDriver entries(Usable(list), m_timeout);
  entries.Click(Row(entries, list, which));
}

void DialogDriver::ChooseFromMenu(const std::string& control, const std::string& item) const {
  const HWND owner = Usable(control);
  PostMessageW(owner, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(owner), -1);  // as the menu key does
  HWND popup = nullptr;
  WaitFor(m_timeout, "the menu of " + control,
          [&] { return (popup = VisibleWindow(kMenuClass, m_process)) != nullptr; });
  const auto menu = reinterpret_cast<HMENU>(Ask(popup, kGetMenu));
  int down = 0;  // how often, until the item is selected
  bool found = false;
  for (int place = 0; place < GetMenuItemCount(menu) && !found; ++place) {
    wchar_t text[256] = L"";
    if (GetMenuStringW(menu, static_cast<UINT>(place), text, 256, MF_BYPOSITION) == 0) continue;  // a line
    std::string shown = FromWide(text);
    shown.resize(std::min(shown.size(), shown.find('\t')));
    std::erase(shown, '&');
    ++down;
    found = shown == item;
  }
  if (!found) PostMessageW(owner, WM_KEYDOWN, VK_ESCAPE, 1);
  for (; found && down > 0; --down) PostMessageW(owner, WM_KEYDOWN, VK_DOWN, 1);
  if (found) PostMessageW(owner, WM_KEYDOWN, VK_RETURN, 1);
  WaitFor(m_timeout, "the end of the menu", [&] { return !IsWindow(popup) || !IsWindowVisible(popup); });
  if (!found) throw DriverError("the menu of " + control + " has no item " + Quoted(item));
}

void DialogDriver::Filter(const std::string& list, const std::string& words) const {
  const HWND entries = Usable(list);
  HWND edit = nullptr;
  WaitFor(m_timeout, "the filter line of " + list, [&] {
    edit = FindWindowExW(GetParent(entries), nullptr, WC_EDITW, nullptr);
    return edit != nullptr && IsWindowVisible(edit);
  });
  Ask(edit, WM_SETTEXT, 0, ToWide(words).c_str());
}

void DialogDriver::Click(const std::string& button) const {
  PostMessageW(Usable(button), BM_CLICK, 0, 0);
}

void DialogDriver::Tab(int number) const {
  const HWND tabs = Usable("tbsOptions");
  Ask(tabs, TCM_SETCURFOCUS, static_cast<WPARAM>(number - 1));
  if (Ask(tabs, TCM_GETCURSEL) != number - 1) throw DriverError("there is no tab " + std::to_string(number));
}

void DialogDriver::Type(const std::string& field, const std::string& text) const {
  HWND edit = Usable(field);
  for (HWND inner : Inner(edit)) {
    if (ClassOf(inner) == "Edit") edit = inner;
  }
  const std::wstring wide = ToWide(text);
  Ask(edit, EM_SETSEL, 0, LPARAM{-1});
  Ask(edit, EM_REPLACESEL, TRUE, wide.c_str());
}

void DialogDriver::Choose(const std::string& box, const std::string& item) const {
  const HWND list = Usable(box);
  const LRESULT count = Ask(list, CB_GETCOUNT);
  for (LRESULT place = 0; place < count; ++place) {
    const LRESULT before = Ask(list, CB_GETCURSEL);
    if (before != place) {
      PostMessageW(list, WM_KEYDOWN, place == 0 ? VK_HOME : VK_DOWN, 1);
      WaitFor(m_timeout, "the next item of " + box, [&] { return Ask(list, CB_GETCURSEL) == place; });
    }
    if (TextOf(list) == item) return;
  }
  throw DriverError(box + " has no item " + Quoted(item));
}

void DialogDriver::Key(const std::string& name) const {
  const WPARAM key = KeyOf(name);
  const HWND form = WaitForForm();
  GUITHREADINFO info{};
  info.cbSize = sizeof info;
  GetGUIThreadInfo(GetWindowThreadProcessId(form, nullptr), &info);
  const HWND receiver = info.hwndFocus ? info.hwndFocus : form;
  PostMessageW(receiver, WM_KEYDOWN, key, 1);
  PostMessageW(receiver, WM_KEYUP, key, static_cast<LPARAM>(0xC0000001));
}

void DialogDriver::Close() const {
  PostMessageW(WaitForForm(), WM_SYSCOMMAND, SC_CLOSE, 0);
}

HWND DialogDriver::Message() const {
  HWND box = nullptr;
  WaitFor(m_timeout, "a message box", [&] {
    box = VisibleWindow(kMessageClass, m_process);
    return box != nullptr && GetDlgItem(box, kMessageTextId) != nullptr;
  });
  return box;
}

void DialogDriver::Answer(const std::string& button) const {
  const HWND box = Message();
  HWND pressed = GetDlgItem(box, ButtonId(button));
  // A message box with only an OK button gives that button the id IDCANCEL.
  if (!pressed && button == "OK") pressed = GetDlgItem(box, IDCANCEL);
  if (!pressed) throw DriverError("the message box has no button " + button);
  PostMessageW(pressed, BM_CLICK, 0, 0);
  WaitFor(m_timeout, "the message box to close", [&] { return !IsWindow(box) || !IsWindowVisible(box); });
}

std::string DialogDriver::MessageTitle() const {
  return TextOf(Message());
}

std::string DialogDriver::MessageText() const {
  return TextOf(GetDlgItem(Message(), kMessageTextId));
}

std::string DialogDriver::Text(const std::string& control) const {
  return TextOf(control == "frmRestore" ? WaitForForm() : Control(control));
}

bool DialogDriver::Enabled(const std::string& control) const {
  return IsWindowEnabled(Control(control));
}

bool DialogDriver::Visible(const std::string& control) const {
  return IsWindowVisible(Control(control));
}

void DialogDriver::ExpectText(const std::string& control, const std::string& text) const {
  std::string found;
  try {
    WaitFor(m_timeout, "", [&] { return (found = Text(control)) == text; });
  } catch (const DriverError&) {
    throw DriverError("the text of " + control + " is " + Quoted(found) + " and not " + Quoted(text));
  }
}

void DialogDriver::ExpectEnabled(const std::string& control, bool enabled) const {
  WaitFor(m_timeout, control + (enabled ? " to be enabled" : " to be disabled"),
          [&] { return Enabled(control) == enabled; });
}

void DialogDriver::ExpectSettled(const std::string& control, const std::string& ending) const {
  std::string shown;
  auto since = Clock::now();
  WaitFor(m_timeout, control + " to settle", [&] {
    const std::string now = Visible(control) ? Text(control) : std::string();
    if (now != shown || now.empty() || !EndsWith(now, ending)) since = Clock::now();
    shown = now;
    return Clock::now() - since > kSettled;
  });
}

void DialogDriver::ExpectVisible(const std::string& control, bool visible) const {
  WaitFor(m_timeout, control + (visible ? " to be seen" : " to be hidden"),
          [&] { return Visible(control) == visible; });
}

void DialogDriver::ExpectCount(const std::string& list, int count) const {
  WaitFor(m_timeout, list + " to have " + std::to_string(count) + " entries",
          [&] { return List(list).Count() == count; });
}

void DialogDriver::ExpectMessage(const std::string& text) const {
  const std::string found = MessageText();
  if (found != text) throw DriverError("the message box says " + Quoted(found) + " and not " + Quoted(text));
}

std::string DialogDriver::Dump() const {
  const HWND form = WaitForForm();
  POINT origin{0, 0};
  ClientToScreen(form, &origin);
  std::string out = "frmRestore " + ClassOf(form) + ' ' + Quoted(TextOf(form)) + '\n';
  for (HWND window : Inner(form)) {
    const std::string name = NameOf(window);
    if (name.empty()) continue;
    RECT place{};
    GetWindowRect(window, &place);
    char line[128];
    std::snprintf(line, sizeof line, " %ld,%ld %ldx%ld", place.left - origin.x, place.top - origin.y,
                  place.right - place.left, place.bottom - place.top);
    out += name + " " + ClassOf(window) + line;
    if (!IsWindowVisible(window)) out += " hidden";
    if (!IsWindowEnabled(window)) out += " disabled";
    out += ' ' + Quoted(TextOf(window)) + '\n';
  }
  return out;
}

}  // namespace kxrestore::driver
