// SQLite's file access with a hook before every call that can fail. An object applies to every file that
// SQLite opens during its lifetime. There is at most one object at a time.
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
  const sqlite3_file* file = nullptr;  // null for kDelete and kAccess
  std::string_view name;               // for kOpen, kDelete and kAccess
  std::string_view bytes;              // for kWrite
  std::int64_t at = 0;                 // for kWrite the offset, for kTruncate the new size
  int flags = 0;                       // for kOpen; for kDelete whether the folder is synced
};

class HookedFiles {
 public:
  // Returns an error code, with which the call fails, or SQLITE_OK, and the call is made.
  using Hook = std::function<int(const FileCall&)>;
  explicit HookedFiles(Hook hook);
  ~HookedFiles();
  HookedFiles(const HookedFiles&) = delete;
  HookedFiles& operator=(const HookedFiles&) = delete;
};

// Counts disk syncs, can fail writes as a full disk does, and can slow files down.
struct WatchedFiles {
  int syncs = 0;
  bool diskFull = false;
  std::chrono::milliseconds pageDelay{}, syncDelay{};  // per page read or written, and per sync

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
