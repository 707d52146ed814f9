// SQLite's file access with an eye on it: counts disk syncs and lets writes fail as on a full disk. While an
// object lives, every file that SQLite opens goes through it. Not for WAL databases.
#pragma once

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
};

}  // namespace kxrestore::engine::testing
