// Stores size, position and splitter positions of the window per user under HKEY_CURRENT_USER. With missing
// or invalid values the window opens as designed. The front end checks that the position is still on a
// screen.
#pragma once

#include "dialog/layout.h"
#include "platform/platform.h"

namespace kxrestore::dialog {

class WindowPlacement {
 public:
  WindowPlacement(FormControls& controls, Layout& layout, platform::Platform& platform)
      : m_ui(controls), m_layout(layout), m_platform(platform) {}

  // Restores size, position and state of the form, before it is laid out.
  void RestoreWindow();
  // Restores the splitters, after the form is laid out.
  void RestoreSplitters();
  void Remember() const;

 private:
  FormControls& m_ui;
  Layout& m_layout;
  platform::Platform& m_platform;
};

}  // namespace kxrestore::dialog
