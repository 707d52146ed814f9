// Finding and asking native windows of this process from another of its threads. Everything waits with a
// limit.
#pragma once

#include <windows.h>

#include <chrono>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace kxrestore::driver {

// Something did not come about in time, or is not there.
class DriverError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

using Patience = std::chrono::milliseconds;

// Asks again and again until the answer is yes; throws a DriverError that says what was waited for.
void WaitFor(Patience patience, const std::string& what, const std::function<bool()>& isSo);

// SendMessage that gives up: a window whose thread hangs raises a DriverError.
LRESULT Ask(HWND window, UINT message, WPARAM wide = 0, LPARAM extra = 0);
template <class Structure>
LRESULT Ask(HWND window, UINT message, WPARAM wide, Structure* extra) {
  return Ask(window, message, wide, reinterpret_cast<LPARAM>(extra));
}

// A click of the left button, as the system would post it.
void PostClick(HWND window, POINT point);

// The visible top-level window of a process that has the class, or null.
HWND VisibleWindow(const wchar_t* windowClass, DWORD process = GetCurrentProcessId());

// The windows inside `parent`, at any depth, in z-order.
std::vector<HWND> Inner(HWND parent);

// The name of the control that a window shows; empty for a window inside one.
std::string NameOf(HWND window);
std::string ClassOf(HWND window);
std::string TextOf(HWND window);

// For messages: the text between apostrophes.
std::string Quoted(const std::string& text);

}  // namespace kxrestore::driver
