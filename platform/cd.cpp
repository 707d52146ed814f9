#include "platform/cd.h"

#include <algorithm>
#include <string_view>

namespace kxrestore::platform {

namespace {

constexpr std::uint32_t kDriveStringsCapacity = 64;
constexpr std::uint32_t kVolumeNameCapacity = 14;

std::string UpperCased(std::string_view root) {
  std::string upper(root);
  for (char& letter : upper) {
    if (letter >= 'a' && letter <= 'z') letter = static_cast<char>(letter - 'a' + 'A');
  }
  return upper;
}

}  // namespace

cCD::cCD(Drives& drives, Desktop& desktop) : m_drives(drives), m_desktop(desktop), m_cdDrives(1) {
  ScanCDDrives();
}

void cCD::EjectCD() {
  Door("CDAudio Door Open");
}
void cCD::CloseCD() {
  Door("CDAudio Door Close");
}
void cCD::Door(const std::string& command) {
  m_drives.MciCommand("Set " + command + " Wait");
}

std::int16_t cCD::CDCount() const {
  return static_cast<std::int16_t>(m_cdDrives.size() - 1);
}

std::string cCD::CDDriveLetter() {
  ScanCDDrives();
  return m_driveLetter;
}

std::string cCD::CDVolumeLabel() {
  ScanCDDrives();
  return m_volumeLabel;
}

bool cCD::CDExists() {
  ScanCDDrives();
  return m_exists;
}

std::string cCD::GetVolumeLabel(const std::string& CDPath) {
  const auto name = m_drives.VolumeLabel(CDPath, kVolumeNameCapacity);
  if (!name) return {};
  const std::string label = name->substr(0, name->find('\0'));
  return label.find_first_not_of(' ') == std::string::npos ? "(no label)" : label;
}

// Assign the result at the end: pending messages may query this object during the scan.
void cCD::ScanCDDrives() {
  const std::string drives = m_drives.LogicalDriveStrings(kDriveStringsCapacity);
  std::vector<std::string> found(1);
  std::string label;
  std::string entry;
  for (std::size_t start = 0; start < drives.size();) {
    const std::size_t end = std::min(drives.find('\0', start), drives.size());
    entry = drives.substr(start, end - start);
    start = end + 1;
    if (m_drives.DriveType(entry) != kDriveCdRom) continue;
    m_desktop.DoEvents();
    label = GetVolumeLabel(entry);
    found.push_back(entry);
  }
  m_exists = found.size() > 1;
  m_driveLetter = m_exists ? UpperCased(entry) : std::string();
  m_volumeLabel = label;
  m_cdDrives = std::move(found);
}

}  // namespace kxrestore::platform
