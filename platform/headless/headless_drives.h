// Drives defined by a test.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/drives.h"

namespace kxrestore::platform {

class HeadlessDrives : public Drives {
 public:
  struct Drive {
    std::string root;                  // "D:\"
    unsigned type = 3;                 // a fixed disk
    std::optional<std::string> label;  // nothing: not ready
  };

  std::vector<Drive> drives;             // in the system's order
  std::vector<std::string> files;        // full paths that a directory search can find
  std::vector<std::string> mciCommands;  // the commands sent

  std::string LogicalDriveStrings(std::uint32_t capacity) override;
  unsigned DriveType(const std::string& root) override;
  std::optional<std::string> VolumeLabel(const std::string& root, std::uint32_t capacity) override;
  void MciCommand(const std::string& command) override { mciCommands.push_back(command); }
  // Repeated separators count as one; letters match in either case; "*" and "?" work in the last component.
  bool FileMatches(const std::string& pattern) override { return !FirstFile(pattern).empty(); }
  std::string FirstFile(const std::string& pattern) override;

 private:
  const Drive* Find(const std::string& root) const;
};

}  // namespace kxrestore::platform
