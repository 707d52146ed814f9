// Finding and querying native windows of this process from another of its threads. Every wait is limited.
#pragma once

#include <windows.h>

#include <chrono>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace kxrestore::driver {

// A wait timed out, or something was not found.
class DriverError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

using Timeout = std::chrono::milliseconds;

// Polls until `isSo` returns true; throws a DriverError that names `what` when the time is up.
void WaitFor(Timeout timeout, const std::string& what, const std::function<bool()>& isSo);

// SendMessage with a time limit: a window whose thread hangs raises a DriverError.
LRESULT Ask(HWND window, UINT message, WPARAM wide = 0, LPARAM extra = 0);
template <class Structure>
LRESULT Ask(HWND window, UINT message, WPARAM wide, Structure* extra) {
  return Ask(window, message, wide, reinterpret_cast<LPARAM>(extra));
}

// A click of the left button, as the system would post it.
void PostClick(HWND window, POINT point);

// The visible top-level window of this class in a process, or null.
HWND VisibleWindow(const wchar_t* windowClass, DWORD process = GetCurrentProcessId());

// The windows inside `parent`, at any depth, in z-order.
std::vector<HWND> Inner(HWND parent);

// The name of the control that a window belongs to; empty for a window inside one.
std::string NameOf(HWND window);
std::string ClassOf(HWND window);
std::string TextOf(HWND window);

// The text in apostrophes, for messages.
std::string Quoted(const std::string& text);

}  // namespace kxrestore::driver
