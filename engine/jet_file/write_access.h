// Exclusive access for writing to a desktop-engine file: no other program has it open or can open it
// meanwhile.
//
// The engine's programs keep a lock file beside the database, with an entry of 64 bytes for each of them and
// a byte beyond its end that each keeps locked. Writing here adds such an entry, locks all of those bytes and
// the database itself, so that the engine and other programs of this kind notice.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "engine/jet_file/file.h"

namespace kxrestore::engine::jet_file {

// Waits briefly for another program; false when the time is up. `first`: at the first wait for a lock.
using WaitForOther = std::function<bool(bool first)>;

class WriteAccess {
 public:
  // Waits for another program of this kind, not for the engine. Errors 3045 with the machine and user that
  // have the file open, 3027 for a file that cannot be written.
  WriteAccess(const std::string& path, bool ace, const WaitForOther& wait);
  ~WriteAccess();
  WriteAccess(const WriteAccess&) = delete;
  WriteAccess& operator=(const WriteAccess&) = delete;

  File& Data() { return *m_data; }
  // Ends writing; other programs stay excluded until destruction.
  void CloseData() { m_data.reset(); }

 private:
  void TakeLockFile(const WaitForOther& wait);
  bool TryLockFile();
  [[noreturn]] void RaiseInUse(const std::string& by) const;

  std::string m_path, m_lockPath;
  std::unique_ptr<File> m_lock;
  std::unique_ptr<File> m_data;
};

// The path of a database's lock file: the same name with .ldb, or .laccdb for the formats from 2007 on.
std::string LockFilePath(const std::string& path, bool ace);

}  // namespace kxrestore::engine::jet_file
