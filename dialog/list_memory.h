// Remembers the user's search masks and the columns and order of the lists from one dialog to the next.
// Missing or invalid settings are ignored.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "dialog/form_controls.h"
#include "platform/platform.h"

namespace kxrestore::dialog {

class ListMemory {
 public:
  ListMemory(FormControls& controls, const platform::Platform& platform)
      : m_ui(controls), m_platform(platform) {}

  void Restore();
  void Remember();  // stores what has changed since

 private:
  FormControls& m_ui;
  platform::Platform m_platform;
  std::string m_masks;               // as last read
  std::vector<std::string> m_looks;  // one per list, as last read
};

// A look as text, for example "name 2100,folder 3000;size-": the columns from left to right with their widths
// in twips, then the column sorted by with "+" (ascending) or "-" (descending).
std::string LookText(const controls::ListLook& look);
controls::ListLook LookOf(std::string_view text);

}  // namespace kxrestore::dialog
