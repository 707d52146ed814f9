// Creates and destroys the native windows of a form's controls.
#pragma once

#include <concepts>

#include "controls/control.h"
#include "platform/win32/controls/window_context.h"

namespace kxrestore::win32 {

// Creates the windows of all controls in `container`, whose window is `parent`.
void MakeChildWindows(WindowContext& context, controls::Container& container, HWND parent);

// Innermost first.
void TakeChildWindows(controls::Container& container);

// Calls `visit(Control&)` for every control inside `container`, in the order of the Tab key.
template <std::invocable<controls::Control&> Visit>
void ForEachControl(controls::Container& container, Visit&& visit) {
  for (controls::Control* const child : container.Children()) {
    visit(*child);
    if (auto* const inner = dynamic_cast<controls::Container*>(child)) ForEachControl(*inner, visit);
  }
}

}  // namespace kxrestore::win32
