// SQLite's file access with a hook before every call that can fail. While an object lives, every file that
// SQLite opens goes through it; one lives at a time.
#pragma once

#include <sqlite3.h>

#include <chrono>
#include <functional>
#include <string_view>
#include <thread>

namespace kxrestore::engine::testing {

struct FileCall {
  enum Kind { kOpen, kRead, kWrite, kTruncate, kSync, kFileSize, kLock, kDelete, kAccess };
  Kind kind;
  const sqlite3_file* file = nullptr;  // not of kDelete and kAccess
  std::string_view name;               // of kOpen, kDelete and kAccess
  std::string_view bytes;              // of kWrite
  std::int64_t at = 0;                 // of kWrite; the new size of kTruncate
  int flags = 0;                       // of kOpen; of kDelete whether the folder is synced
};

class HookedFiles {
 public:
  // Returns the code that the call fails with, or SQLITE_OK for it to be made.
  using Hook = std::function<int(const FileCall&)>;
  explicit HookedFiles(Hook hook);
  ~HookedFiles();
  HookedFiles(const HookedFiles&) = delete;
  HookedFiles& operator=(const HookedFiles&) = delete;
};

// Counts disk syncs, lets writes fail as on a full disk and makes everything slow.
struct WatchedFiles {
  int syncs = 0;
  bool diskFull = false;
  std::chrono::milliseconds pageDelay{}, syncDelay{};  // of reading or writing a page, and of syncing

 private:
  HookedFiles m_files{[this](const FileCall& call) {
    const bool isWrite = call.kind == FileCall::kWrite, isSync = call.kind == FileCall::kSync;
    if (isWrite || call.kind == FileCall::kRead) std::this_thread::sleep_for(pageDelay);
    if (isSync) std::this_thread::sleep_for(syncDelay);
    syncs += isSync ? 1 : 0;
    return isWrite && diskFull ? SQLITE_FULL : SQLITE_OK;
  }};
};

}  // namespace kxrestore::engine::testing
