#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>

#include "engine/error_numbers.h"
#include "engine/jet_file/file.h"

namespace kxrestore::engine::jet_file {
namespace {

namespace number = error_number;

[[noreturn]] void RaiseSystem(int code, const std::string& path) {
  const std::string quoted = "'" + path + "'";
  const std::string reason = std::string(" (") + std::strerror(code) + ").";
  switch (code) {
    case ENOENT:
    case ENOTDIR:
      Raise(number::kFileNotFound, "Could not find file " + quoted + ".");
    case EACCES:
    case EPERM:
    case EROFS:
      Raise(number::kReadOnly, "Cannot update. Database or object is read-only: " + quoted + reason);
    case ENOSPC:
    case EDQUOT:
      Raise(number::kDiskFull, "Not enough space on disk to change " + quoted + ".");
    default:
      Raise(number::kDiskError, "Disk or network error on " + quoted + reason);
  }
}

class PosixFile final : public File {
 public:
  PosixFile(std::string path, int descriptor) : m_path(std::move(path)), m_descriptor(descriptor) {}
  ~PosixFile() override { close(m_descriptor); }
  PosixFile(const PosixFile&) = delete;
  PosixFile& operator=(const PosixFile&) = delete;

  FileStamp Stamp() const override {
    struct stat status {};
    if (fstat(m_descriptor, &status) != 0) RaiseSystem(errno, m_path);
    return {static_cast<std::uint64_t>(status.st_size),
            static_cast<std::int64_t>(status.st_mtim.tv_sec) * 1'000'000'000 + status.st_mtim.tv_nsec};
  }

  std::size_t ReadAt(std::uint64_t offset, void* bytes, std::size_t size) const override {
    std::size_t done = 0;
    while (done < size) {
      const ssize_t got = pread(m_descriptor, static_cast<char*>(bytes) + done, size - done,
                                static_cast<off_t>(offset + done));
      if (got < 0 && errno == EINTR) continue;
      if (got < 0) RaiseSystem(errno, m_path);
      if (got == 0) break;
      done += static_cast<std::size_t>(got);
    }
    return done;
  }

  void WriteAt(std::uint64_t offset, const void* bytes, std::size_t size) override {
    std::size_t done = 0;
    while (done < size) {
      const ssize_t put = pwrite(m_descriptor, static_cast<const char*>(bytes) + done, size - done,
                                 static_cast<off_t>(offset + done));
      if (put < 0 && errno == EINTR) continue;
      if (put <= 0) RaiseSystem(put < 0 ? errno : EIO, m_path);
      done += static_cast<std::size_t>(put);
    }
  }

  void Sync() override {
    if (fdatasync(m_descriptor) != 0) RaiseSystem(errno, m_path);
  }

  // A lock of the open file rather than the process, so that two databases of one program exclude each other,
  // too.
  bool TryLock(std::uint64_t first, std::uint64_t count) override {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = static_cast<off_t>(first);
    lock.l_len = static_cast<off_t>(count);
    if (fcntl(m_descriptor, F_OFD_SETLK, &lock) == 0) return true;
    if (errno == EAGAIN || errno == EACCES) return false;
    if (errno == EINVAL || errno == ENOLCK || errno == ENOTSUP) return true;  // the file system has no locks
    RaiseSystem(errno, m_path);
  }

  bool IsAt(const std::string& path) const override {
    struct stat mine {
    }, there{};
    return fstat(m_descriptor, &mine) == 0 && stat(path.c_str(), &there) == 0 &&
           mine.st_dev == there.st_dev && mine.st_ino == there.st_ino;
  }

 private:
  std::string m_path;
  int m_descriptor;
};

}  // namespace

std::unique_ptr<File> File::Open(const std::string& path, Use use) {
  const int flags = use == Use::kReading ? O_RDONLY : use == Use::kWriting ? O_RDWR : O_RDWR | O_CREAT;
  const int descriptor = open(path.c_str(), flags | O_CLOEXEC, 0666);
  if (descriptor >= 0) return std::make_unique<PosixFile>(path, descriptor);
  if (use == Use::kReading && (errno == EACCES || errno == EPERM)) {
    Raise(number::kCannotOpen,
          "The database engine cannot open the file '" + path + "'. You need permission to view it.");
  }
  RaiseSystem(errno, path);
}

bool FileExists(const std::string& path) {
  return access(path.c_str(), F_OK) == 0;
}

void RemoveFile(const std::string& path) noexcept {
  unlink(path.c_str());
}

std::string MachineName() {
  char name[256] = {};
  if (gethostname(name, sizeof name - 1) != 0) return "UNKNOWN";
  std::string text = std::string_view(name).substr(0, 31) == std::string_view() ? "UNKNOWN" : name;
  text = text.substr(0, std::min<std::size_t>(text.find('.'), 31));
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    if (static_cast<unsigned char>(c) >= 0x80) c = '_';
  }
  return text;
}

bool KnowsWhoHasFilesOpen() {
  return false;
}

bool IsOpenNowhereElse(const std::string&) {
  return false;
}

}  // namespace kxrestore::engine::jet_file
