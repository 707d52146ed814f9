// A file that is read and written at given places: the one thing that this back end asks of the system.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace kxrestore::engine::jet_file {

// Changes whenever somebody writes to the file.
struct FileStamp {
  std::uint64_t size = 0;
  std::int64_t modified = 0;
  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

class File {
 public:
  enum class Use { kReading, kWriting, kLockFile };

  // kReading lets others do what they like. kWriting keeps other writers out while the file is open, where
  // the system can do that. kLockFile makes the file when there is none. Errors 3024, 3045, 3051, 3027.
  static std::unique_ptr<File> Open(const std::string& path, Use use);
  virtual ~File() = default;

  virtual FileStamp Stamp() const = 0;
  // How many bytes there were; fewer than `size` only at the end of the file.
  virtual std::size_t ReadAt(std::uint64_t offset, void* bytes, std::size_t size) const = 0;
  virtual void WriteAt(std::uint64_t offset, const void* bytes, std::size_t size) = 0;
  virtual void Sync() = 0;
  // Locks bytes against other programs until the file is closed; false when one of them has some of them.
  virtual bool TryLock(std::uint64_t first, std::uint64_t count) = 0;
  // Whether this is still the file of that path.
  virtual bool IsAt(const std::string& path) const = 0;
};

bool FileExists(const std::string& path);
void RemoveFile(const std::string& path) noexcept;
// As lock files have it: upper case, ASCII, at most 31 characters.
std::string MachineName();
// The text of an entry that another machine's program left cannot be judged by a POSIX system: locks of a
// file server need not reach it. Windows knows who has a file open.
bool KnowsWhoHasFilesOpen();
// Whether no other program has the file open; only where KnowsWhoHasFilesOpen.
bool IsOpenNowhereElse(const std::string& path);

}  // namespace kxrestore::engine::jet_file
