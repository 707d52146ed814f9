// What is remembered for the user from one dialog to the next: the masks searched for, and how the lists are
// arranged and sorted. Nothing of it needs to be there, and what makes no sense is passed over.
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
  void Remember();  // what has changed since

 private:
  FormControls& m_ui;
  platform::Platform m_platform;
  std::string m_masks;               // as they were read
  std::vector<std::string> m_looks;  // a list
};

// A look as text: "name 2100,folder 3000;size-", columns from left to right with their twips, then the column
// sorted by, "+" upwards and "-" downwards.
std::string LookText(const controls::ListLook& look);
controls::ListLook LookOf(std::string_view text);

}  // namespace kxrestore::dialog
