// Sample backups on CD: an archive database that lists earlier discs, and a disc to append to it.
#pragma once

#include <string>

namespace kxrestore::sample {

inline constexpr const char* kDiscVolume = "VOL003";
inline constexpr int kArchivedHeaders = 24;  // of the discs VOL001 and VOL002, in 2024 and 2025
inline constexpr int kDiscHeaders = 12;
inline constexpr int kNewHeaders = 9;  // those of the disc that the archive lacks

// Creates the archive database `path` (UTF-8), replacing any, and the folders above it. Failures are
// kxrestore::Error.
void MakeArchive(const std::string& path);
// Turns the folder into a disc with the database "backup!mdb".
void MakeDisc(const std::string& folder);

}  // namespace kxrestore::sample
