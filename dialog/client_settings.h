// The registry section of the backup client that the dialog belongs to.
#pragma once

#include <cstdint>

#include "platform/platform.h"
#include "platform/program_settings.h"

namespace kxrestore::dialog {

inline platform::CProgramSettings ClientSettings(const platform::Platform& platform, std::uint32_t rootKey) {
  platform::CProgramSettings settings(platform.registry, platform.desktop);
  settings.SetRootKey(rootKey);
  settings.SetMainBranch("Software");
  settings.SetRegBase("Brellick Labs, Inc.");
  settings.SetProgram("Tarvane");
  settings.SetSection("Settings");
  return settings;
}

// Stores the dialog's settings of the user.
inline platform::CProgramSettings UserSettings(const platform::Platform& platform) {
  return ClientSettings(platform, platform::kHkeyCurrentUser);
}

}  // namespace kxrestore::dialog
