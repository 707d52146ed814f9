// Random access to a file: the only operating system service that this back end needs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace kxrestore::engine::jet_file {

// Changes whenever anyone writes to the file.
struct FileStamp {
  std::uint64_t size = 0;
  std::int64_t modified = 0;
  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

class File {
 public:
  enum class Use { kReading, kWriting, kLockFile };

  // kReading does not restrict others. kWriting excludes other writers while the file is open, where the
  // system supports that. kLockFile creates the file if necessary. Errors 3024, 3045, 3051, 3027.
  static std::unique_ptr<File> Open(const std::string& path, Use use);
  virtual ~File() = default;

  virtual FileStamp Stamp() const = 0;
  // Returns the number of bytes read; fewer than `size` only at the end of the file.
  virtual std::size_t ReadAt(std::uint64_t offset, void* bytes, std::size_t size) const = 0;
  virtual void WriteAt(std::uint64_t offset, const void* bytes, std::size_t size) = 0;
  virtual void Sync() = 0;
  // Locks bytes against other programs until the file is closed; false when another program has locked some
  // of them.
  virtual bool TryLock(std::uint64_t first, std::uint64_t count) = 0;
  // Whether this is still the file at that path.
  virtual bool IsAt(const std::string& path) const = 0;
};

bool FileExists(const std::string& path);
void RemoveFile(const std::string& path) noexcept;
// As in lock files: upper case, ASCII, at most 31 characters.
std::string MachineName();
// Whether the system can tell that no other program has a file open. If not, another machine's entry in the
// lock file counts even when its byte is not locked: locks of a file server need not be visible here.
bool KnowsWhoHasFilesOpen();
// Whether no other program has the file open; only where KnowsWhoHasFilesOpen.
bool IsOpenNowhereElse(const std::string& path);

}  // namespace kxrestore::engine::jet_file
