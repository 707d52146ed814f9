// The right to write into a file of the desktop engine: nobody else has it open, and nobody can open it
// meanwhile.
//
// The engine's programs keep a lock file beside the database: an entry of 64 bytes for each of them, and a
// locked byte behind its end as long as they live. Who writes here makes such an entry, too, locks every one
// of those bytes and the database itself, so that the engine and other programs of this kind see it.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "engine/jet_file/file.h"

namespace kxrestore::engine::jet_file {

// Waits a moment for another program; false when that has been long enough. `first`: of the moments for one
// lock.
using WaitForOther = std::function<bool(bool first)>;

class WriteAccess {
 public:
  // Waits for another program of this kind, not for the engine. Errors 3045 with the machine and
  // the user that have the file, 3027 for a file that cannot be written.
  WriteAccess(const std::string& path, bool ace, const WaitForOther& wait);
  ~WriteAccess();
  WriteAccess(const WriteAccess&) = delete;
  WriteAccess& operator=(const WriteAccess&) = delete;

  File& Data() { return *m_data; }
  // Ends the writing; others stay out until destruction.
  void CloseData() { m_data.reset(); }

 private:
  void TakeLockFile(const WaitForOther& wait);
  bool TryLockFile();
  [[noreturn]] void RaiseInUse(const std::string& by) const;

  std::string m_path, m_lockPath;
  std::unique_ptr<File> m_lock;
  std::unique_ptr<File> m_data;
};

// Where the lock file of a database lies: the same name with .ldb, or .laccdb for the formats from 2007 on.
std::string LockFilePath(const std::string& path, bool ace);

}  // namespace kxrestore::engine::jet_file
