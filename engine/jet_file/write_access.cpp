#include "engine/jet_file/write_access.h"

#include <array>
#include <string_view>

#include "engine/error_numbers.h"

namespace kxrestore::engine::jet_file {
namespace {

constexpr std::uint64_t kFirstUserByte = 0x10000000, kUserBytes = 256;
constexpr std::size_t kEntrySize = 64, kMachineSize = 32, kMaxEntries = 255;
constexpr std::string_view kOurUser = "KXRestore";

struct Entry {
  std::string machine, user;
};

// The most informative entry about who has the file open: one of another kind of program.
Entry ReadEntry(const File& lock) {
  Entry found;
  std::array<char, kEntrySize> bytes{};
  for (std::size_t i = 0; i < kMaxEntries; ++i) {
    if (lock.ReadAt(i * kEntrySize, bytes.data(), bytes.size()) != bytes.size()) break;
    const auto text = [&](std::size_t start) {
      const std::string_view field(bytes.data() + start, kMachineSize);
      std::string_view value = field.substr(0, field.find('\0'));
      while (!value.empty() && value.back() == ' ') value.remove_suffix(1);
      return std::string(value);
    };
    Entry entry{text(0), text(kMachineSize)};
    if (entry.machine.empty()) continue;
    const bool ours = entry.user == kOurUser;
    if (found.machine.empty() || !ours) found = std::move(entry);
    if (!ours) break;
  }
  return found;
}

std::string Described(const Entry& entry) {
  return "'" + entry.machine + "', user '" + entry.user + "'";
}

}  // namespace

std::string LockFilePath(const std::string& path, bool ace) {
  const std::size_t dot = path.find_last_of("./\\");
  const bool extended = dot != std::string::npos && path[dot] == '.';
  return (extended ? path.substr(0, dot) : path) + (ace ? ".laccdb" : ".ldb");
}

WriteAccess::WriteAccess(const std::string& path, bool ace, const WaitForOther& wait)
    : m_path(path), m_lockPath(LockFilePath(path, ace)) {
  // A file that cannot be written needs no lock file; where the system excludes other writers, this fails
  // here.
  m_data = File::Open(path, File::Use::kWriting);
  TakeLockFile(wait);
  if (KnowsWhoHasFilesOpen()) return;
  try {
    for (bool first = true; !m_data->TryLock(0, kFirstUserByte); first = false) {
      if (!wait(first)) RaiseInUse("another program");
    }
  } catch (...) {
    RemoveFile(m_lockPath);
    throw;
  }
}

WriteAccess::~WriteAccess() {
  m_data.reset();
  if (!KnowsWhoHasFilesOpen()) RemoveFile(m_lockPath);  // while it is locked no other program uses it
  m_lock.reset();
  if (KnowsWhoHasFilesOpen()) RemoveFile(m_lockPath);  // fails if another program has opened it
}

void WriteAccess::RaiseInUse(const std::string& by) const {
  Raise(error_number::kFileInUse, "Could not use '" + m_path + "'; file already in use by " + by + ".");
}

// Whether we own the lock file at that path. On a system that cannot tell who has a file open, another
// machine's entry counts even without a lock.
bool WriteAccess::TryLockFile() {
  const bool existed = FileExists(m_lockPath);
  const bool stale = existed && KnowsWhoHasFilesOpen() && IsOpenNowhereElse(m_lockPath);
  m_lock = File::Open(m_lockPath, File::Use::kLockFile);
  const Entry entry = ReadEntry(*m_lock);
  if (!m_lock->TryLock(kFirstUserByte, kUserBytes)) {
    if (!entry.machine.empty() && entry.user != kOurUser) RaiseInUse(Described(entry));
    return false;
  }
  if (!m_lock->IsAt(m_lockPath)) return false;  // its owner has just deleted it
  if (!entry.machine.empty() && entry.user != kOurUser && entry.machine != MachineName() && !stale) {
    RaiseInUse(Described(entry) + ". If that program has ended long ago, delete the file '" + m_lockPath +
               "'");
  }
  std::array<char, kEntrySize> mine{};
  const std::string machine = MachineName();
  machine.copy(mine.data(), kMachineSize - 1);
  kOurUser.copy(mine.data() + kMachineSize, kMachineSize - 1);
  m_lock->WriteAt(0, mine.data(), mine.size());
  return true;
}

void WriteAccess::TakeLockFile(const WaitForOther& wait) {
  try {
    for (bool first = true; !TryLockFile(); first = false) {
      m_lock.reset();
      if (!wait(first)) RaiseInUse("another program");
    }
  } catch (const Error& error) {
    if (error.Number() != error_number::kReadOnly) throw;
    Raise(error_number::kReadOnly, "Cannot update. Database or object is read-only: '" + m_path +
                                       "', because the lock file '" + m_lockPath + "' cannot be written.");
  }
}

}  // namespace kxrestore::engine::jet_file
