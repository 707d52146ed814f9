// Where the dialog remembers things for the user, under HKEY_CURRENT_USER.
#pragma once

#include "platform/platform.h"
#include "platform/program_settings.h"

namespace kxrestore::dialog {

inline platform::CProgramSettings UserSettings(const platform::Platform& platform) {
  platform::CProgramSettings settings(platform.registry, platform.desktop);
  settings.SetRootKey(platform::kHkeyCurrentUser);
  settings.SetMainBranch("Software");
  settings.SetRegBase("Brellick Labs, Inc.");
  settings.SetProgram("Tarvane");
  settings.SetSection("Settings");
  return settings;
}

}  // namespace kxrestore::dialog
