// Size, place and splitter positions of the window, remembered for the user under HKEY_CURRENT_USER from one
// dialog to the next. Nothing of it needs to be there: without it, and with values that make no sense, the
// window opens as designed. Whether the place is still on a screen is for the front end to see.
#pragma once

#include "dialog/layout.h"
#include "platform/platform.h"

namespace kxrestore::dialog {

class WindowPlacement {
 public:
  WindowPlacement(FormControls& controls, Layout& layout, platform::Platform& platform)
      : m_ui(controls), m_layout(layout), m_platform(platform) {}

  // Gives the form its remembered size, place and state: before the form is laid out.
  void RestoreWindow();
  // Puts the splitters where they were: once everything is laid out and the splitters know their areas.
  void RestoreSplitters();
  void Remember() const;

 private:
  FormControls& m_ui;
  Layout& m_layout;
  platform::Platform& m_platform;
};

}  // namespace kxrestore::dialog
