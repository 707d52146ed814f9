#include <windows.h>

#include <string_view>

#include "base/utf16.h"
#include "engine/error_numbers.h"
#include "engine/jet_file/file.h"

namespace kxrestore::engine::jet_file {
namespace {

namespace number = error_number;

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

[[noreturn]] void RaiseSystem(DWORD code, const std::string& path) {
  const std::string quoted = "'" + path + "'";
  switch (code) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
      Raise(number::kFileNotFound, "Could not find file " + quoted + ".");
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
      Raise(number::kFileInUse, "Could not use " + quoted + "; file already in use by another program.");
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
      Raise(number::kReadOnly, "Cannot update. Database or object is read-only: " + quoted + ".");
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      Raise(number::kDiskFull, "Not enough space on disk to change " + quoted + ".");
    default:
      Raise(number::kDiskError,
            "Disk or network error on " + quoted + " (Windows error " + std::to_string(code) + ").");
  }
}

OVERLAPPED PlaceOf(std::uint64_t offset) {
  OVERLAPPED place{};
  place.Offset = static_cast<DWORD>(offset);
  place.OffsetHigh = static_cast<DWORD>(offset >> 32);
  return place;
}

class WindowsFile final : public File {
 public:
  WindowsFile(std::string path, HANDLE handle) : m_path(std::move(path)), m_handle(handle) {}
  ~WindowsFile() override { CloseHandle(m_handle); }
  WindowsFile(const WindowsFile&) = delete;
  WindowsFile& operator=(const WindowsFile&) = delete;

  FileStamp Stamp() const override {
    BY_HANDLE_FILE_INFORMATION facts{};
    if (!GetFileInformationByHandle(m_handle, &facts)) RaiseSystem(GetLastError(), m_path);
    return {static_cast<std::uint64_t>(facts.nFileSizeHigh) << 32 | facts.nFileSizeLow,
            static_cast<std::int64_t>(static_cast<std::uint64_t>(facts.ftLastWriteTime.dwHighDateTime) << 32 |
                                      facts.ftLastWriteTime.dwLowDateTime)};
  }

  std::size_t ReadAt(std::uint64_t offset, void* bytes, std::size_t size) const override {
    std::size_t done = 0;
    while (done < size) {
      OVERLAPPED place = PlaceOf(offset + done);
      DWORD got = 0;
      if (!ReadFile(m_handle, static_cast<char*>(bytes) + done, static_cast<DWORD>(size - done), &got,
                    &place)) {
        if (GetLastError() == ERROR_HANDLE_EOF) break;
        RaiseSystem(GetLastError(), m_path);
      }
      if (got == 0) break;
      done += got;
    }
    return done;
  }

  void WriteAt(std::uint64_t offset, const void* bytes, std::size_t size) override {
    OVERLAPPED place = PlaceOf(offset);
    DWORD put = 0;
    if (!WriteFile(m_handle, bytes, static_cast<DWORD>(size), &put, &place))
      RaiseSystem(GetLastError(), m_path);
    if (put != size) RaiseSystem(ERROR_DISK_FULL, m_path);
  }

  void Sync() override {
    if (!FlushFileBuffers(m_handle)) RaiseSystem(GetLastError(), m_path);
  }

  bool TryLock(std::uint64_t first, std::uint64_t count) override {
    OVERLAPPED place = PlaceOf(first);
    if (LockFileEx(m_handle, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0,
                   static_cast<DWORD>(count), static_cast<DWORD>(count >> 32), &place)) {
      return true;
    }
    const DWORD code = GetLastError();
    if (code == ERROR_LOCK_VIOLATION || code == ERROR_IO_PENDING) return false;
    RaiseSystem(code, m_path);
  }

  bool IsAt(const std::string&) const override { return true; }  // an open file cannot be replaced

 private:
  std::string m_path;
  HANDLE m_handle;
};

}  // namespace

std::unique_ptr<File> File::Open(const std::string& path, Use use) {
  const DWORD access = use == Use::kReading ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
  const DWORD share = use == Use::kWriting    ? FILE_SHARE_READ
                      : use == Use::kLockFile ? FILE_SHARE_READ | FILE_SHARE_WRITE
                                              : kShareAll;
  const HANDLE handle =
      CreateFileW(ToWide(path).c_str(), access, share, nullptr,
                  use == Use::kLockFile ? OPEN_ALWAYS : OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle != INVALID_HANDLE_VALUE) return std::make_unique<WindowsFile>(path, handle);
  const DWORD code = GetLastError();
  if (use == Use::kReading && code == ERROR_ACCESS_DENIED) {
    Raise(number::kCannotOpen,
          "The database engine cannot open the file '" + path + "'. You need permission to view it.");
  }
  RaiseSystem(code, path);
}

bool FileExists(const std::string& path) {
  return GetFileAttributesW(ToWide(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

void RemoveFile(const std::string& path) noexcept {
  try {
    DeleteFileW(ToWide(path).c_str());
  } catch (...) {  // a leftover file is reused next time
  }
}

std::string MachineName() {
  wchar_t name[MAX_COMPUTERNAME_LENGTH + 1] = {};
  DWORD size = MAX_COMPUTERNAME_LENGTH + 1;
  if (!GetComputerNameW(name, &size)) return "UNKNOWN";
  std::string text;
  for (DWORD i = 0; i < size && i < 31; ++i) text += name[i] < 0x80 ? static_cast<char>(name[i]) : '_';
  return text;
}

bool KnowsWhoHasFilesOpen() {
  return true;
}

bool IsOpenNowhereElse(const std::string& path) {
  const HANDLE handle = CreateFileW(ToWide(path).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return GetLastError() == ERROR_FILE_NOT_FOUND;
  CloseHandle(handle);
  return true;
}

}  // namespace kxrestore::engine::jet_file
