// SQLite's file access with an eye on it: counts disk syncs, lets writes fail as on a full disk and makes
// everything slow. While an object lives, every file that SQLite opens goes through it. Not for WAL
// databases.
#pragma once

#include <chrono>

namespace kxrestore::engine::testing {

class WatchedFiles {
 public:
  WatchedFiles();
  ~WatchedFiles();
  WatchedFiles(const WatchedFiles&) = delete;
  WatchedFiles& operator=(const WatchedFiles&) = delete;

  int Syncs() const;
  void ResetSyncs();
  void SetDiskFull(bool full);
  // How long reading or writing a page takes, and how long syncing.
  void SetDelays(std::chrono::milliseconds page, std::chrono::milliseconds sync);
};

}  // namespace kxrestore::engine::testing
