// Sample backups on CD: the archive database that lists what was burnt so far, and a disc to add to it.
#pragma once

#include <string>

namespace kxrestore::sample {

inline constexpr const char* kDiscVolume = "VOL003";
inline constexpr int kArchivedHeaders = 24;  // of the discs VOL001 and VOL002, in 2024 and 2025
inline constexpr int kDiscHeaders = 12;
inline constexpr int kNewHeaders = 9;  // of the disc's: the rest the archive holds already

// Makes the archive database `path` (UTF-8) anew, with the folders above it. Failures are kxrestore::Error.
void MakeArchive(const std::string& path);
// Makes the folder a disc with its database "backup!mdb".
void MakeDisc(const std::string& folder);

}  // namespace kxrestore::sample
