// Drives and the CD tray, mapped one to one to the system's calls.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kxrestore::platform {

inline constexpr unsigned kDriveCdRom = 5;

class Drives {
 public:
  virtual ~Drives() = default;

  // Root strings of all drives, each followed by a NUL, if they fit into `capacity` characters; otherwise
  // empty.
  virtual std::string LogicalDriveStrings(std::uint32_t capacity) = 0;
  virtual unsigned DriveType(const std::string& root) = 0;
  // The volume name, truncated to `capacity` characters including its NUL; nothing when the drive is not
  // ready or the name does not fit.
  virtual std::optional<std::string> VolumeLabel(const std::string& root, std::uint32_t capacity) = 0;
  // A command for the multimedia system; its result is not checked.
  virtual void MciCommand(const std::string& command) = 0;
  // Whether a directory search for the pattern (wildcards in its last component) finds a file; false on an
  // error.
  virtual bool FileMatches(const std::string& pattern) = 0;
  // The path of the first match of such a search; empty when there is none.
  virtual std::string FirstFile(const std::string& pattern) = 0;
};

}  // namespace kxrestore::platform
