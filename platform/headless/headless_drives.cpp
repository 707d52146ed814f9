#include "platform/headless/headless_drives.h"

#include <algorithm>
#include <string_view>

#include "base/text.h"

namespace kxrestore::platform {

namespace {

constexpr unsigned kNoRootDirectory = 1;

std::string Normalised(std::string_view path) {
  std::string folded = FoldCase(path);
  folded.erase(std::unique(folded.begin(), folded.end(),
                           [](char left, char right) { return left == '\\' && right == '\\'; }),
               folded.end());
  return folded;
}

bool Matches(std::string_view mask, std::string_view name) {
  std::size_t atMask = 0, atName = 0;
  std::size_t afterStar = std::string_view::npos, retry = 0;
  while (atName < name.size()) {
    if (atMask < mask.size() && mask[atMask] == '*') {
      afterStar = ++atMask;
      retry = atName;
    } else if (atMask < mask.size() && (mask[atMask] == '?' || mask[atMask] == name[atName])) {
      ++atMask;
      ++atName;
    } else if (afterStar != std::string_view::npos) {
      atMask = afterStar;
      atName = ++retry;
    } else {
      return false;
    }
  }
  return mask.find_first_not_of('*', atMask) == std::string_view::npos;
}

}  // namespace

const HeadlessDrives::Drive* HeadlessDrives::Find(const std::string& root) const {
  const auto place = std::find_if(drives.begin(), drives.end(),
                                  [&](const Drive& drive) { return EqualIgnoringCase(drive.root, root); });
  return place == drives.end() ? nullptr : &*place;
}

std::string HeadlessDrives::LogicalDriveStrings(std::uint32_t capacity) {
  std::string roots;
  for (const Drive& drive : drives) roots.append(drive.root).push_back('\0');
  // One more NUL ends the list.
  return roots.size() + 1 > capacity ? std::string() : roots;
}

unsigned HeadlessDrives::DriveType(const std::string& root) {
  const Drive* const drive = Find(root);
  return drive == nullptr ? kNoRootDirectory : drive->type;
}

std::optional<std::string> HeadlessDrives::VolumeLabel(const std::string& root, std::uint32_t capacity) {
  const Drive* const drive = Find(root);
  if (drive == nullptr || !drive->label || CharacterCount(*drive->label) + 1 > capacity) return std::nullopt;
  return drive->label;
}

std::string HeadlessDrives::FirstFile(const std::string& pattern) {
  const std::string wanted = Normalised(pattern);
  const std::size_t maskStart = wanted.rfind('\\') + 1;  // 0 when there is no separator
  const auto found = std::find_if(files.begin(), files.end(), [&](const std::string& file) {
    const std::string path = Normalised(file);
    const std::size_t nameStart = path.rfind('\\') + 1;
    return std::string_view(path).substr(0, nameStart) == std::string_view(wanted).substr(0, maskStart) &&
           Matches(std::string_view(wanted).substr(maskStart), std::string_view(path).substr(nameStart));
  });
  return found == files.end() ? std::string() : *found;
}

}  // namespace kxrestore::platform
