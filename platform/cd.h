// Finds the machine's CD-ROM drives, reads volume labels, and opens and closes the tray of the default CD
// device. Raises no errors: what cannot be read is empty. Every property but the count scans the machine
// again, processing pending messages once for each CD-ROM drive.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/desktop.h"
#include "platform/drives.h"

namespace kxrestore::platform {

class cCD {
 public:
  cCD(Drives& drives, Desktop& desktop);

  void EjectCD();
  void CloseCD();
  std::int16_t CDCount() const;  // of the last scan
  // The upper-cased root of the system's last drive, whatever kind that is; empty without a CD-ROM drive.
  std::string CDDriveLetter();
  std::string CDVolumeLabel();  // of the last CD-ROM drive
  bool CDExists();
  // "(no label)" for a blank label, empty for a drive that is not ready.
  std::string GetVolumeLabel(const std::string& CDPath);

 private:
  void ScanCDDrives();
  void Door(const std::string& command);

  Drives& m_drives;
  Desktop& m_desktop;
  std::vector<std::string> m_cdDrives;  // roots from index 1; index 0 stays empty
  std::string m_driveLetter;
  std::string m_volumeLabel;
  bool m_exists = false;
};

}  // namespace kxrestore::platform
