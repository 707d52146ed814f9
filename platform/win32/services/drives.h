// The machine's drives. Accessing an empty drive never shows the system's "no disk" message.
#pragma once

#include "platform/drives.h"

namespace kxrestore::win32 {

class Win32Drives final : public platform::Drives {
 public:
  std::string LogicalDriveStrings(std::uint32_t capacity) override;
  unsigned DriveType(const std::string& root) override;
  std::optional<std::string> VolumeLabel(const std::string& root, std::uint32_t capacity) override;
  void MciCommand(const std::string& command) override;
  bool FileMatches(const std::string& pattern) override;
  std::string FirstFile(const std::string& pattern) override;
};

}  // namespace kxrestore::win32
