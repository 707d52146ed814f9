#include "host/driver/native_windows.h"

#include <thread>

#include "base/utf16.h"

namespace kxrestore::driver {
namespace {

constexpr wchar_t kNameProperty[] = L"KXRestore.Control";
constexpr UINT kAnswerTime = 30000;  // ms; a busy dialog processes messages far more often

BOOL CALLBACK Collect(HWND window, LPARAM list) {
  reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
  return TRUE;
}

}  // namespace

void WaitFor(Timeout timeout, const std::string& what, const std::function<bool()>& isSo) {
  const auto end = std::chrono::steady_clock::now() + timeout;
  while (!isSo()) {
    if (std::chrono::steady_clock::now() > end) throw DriverError("waited in vain for " + what);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

LRESULT Ask(HWND window, UINT message, WPARAM wide, LPARAM extra) {
  DWORD_PTR answer = 0;
  if (!SendMessageTimeoutW(window, message, wide, extra, SMTO_NORMAL, kAnswerTime, &answer)) {
    throw DriverError("a window does not answer");
  }
  return static_cast<LRESULT>(answer);
}

void PostClick(HWND window, POINT point) {
  const LPARAM place = MAKELPARAM(point.x, point.y);
  PostMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, place);
  PostMessageW(window, WM_LBUTTONUP, 0, place);
}

HWND VisibleWindow(const wchar_t* windowClass, DWORD process) {
  HWND window = nullptr;
  while ((window = FindWindowExW(nullptr, window, windowClass, nullptr)) != nullptr) {
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    if (owner == process && IsWindowVisible(window)) break;
  }
  return window;
}

std::vector<HWND> Inner(HWND parent) {
  std::vector<HWND> windows;
  EnumChildWindows(parent, Collect, reinterpret_cast<LPARAM>(&windows));
  return windows;
}

std::string NameOf(HWND window) {
  const auto atom = static_cast<ATOM>(reinterpret_cast<std::uintptr_t>(GetPropW(window, kNameProperty)));
  wchar_t name[256] = L"";
  if (atom == 0 || GlobalGetAtomNameW(atom, name, 256) == 0) return {};
  return FromWide(name);
}

std::string ClassOf(HWND window) {
  wchar_t name[256] = L"";
  GetClassNameW(window, name, 256);
  return FromWide(name);
}

std::string TextOf(HWND window) {
  std::wstring text(static_cast<std::size_t>(Ask(window, WM_GETTEXTLENGTH)) + 1, L'\0');
  text.resize(static_cast<std::size_t>(Ask(window, WM_GETTEXT, text.size(), text.data())));
  return FromWide(text);
}

std::string Quoted(const std::string& text) {
  return std::string(1, '\'').append(text).append(1, '\'');
}

}  // namespace kxrestore::driver
