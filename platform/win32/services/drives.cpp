#include "platform/win32/services/drives.h"

#include <array>

#include "platform/win32/wide_text.h"
#include "platform/win32/win32.h"

#include <mmsystem.h>

namespace kxrestore::win32 {

namespace {

constexpr DWORD kFileSystemNameCapacity = 32;

class QuietErrors {
 public:
  QuietErrors() { SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &m_before); }
  ~QuietErrors() { SetThreadErrorMode(m_before, nullptr); }
  QuietErrors(const QuietErrors&) = delete;
  QuietErrors& operator=(const QuietErrors&) = delete;

 private:
  DWORD m_before = 0;
};

class FileSearch {
 public:
  explicit FileSearch(const std::wstring& pattern) : m_handle(FindFirstFileW(pattern.c_str(), &m_found)) {}
  ~FileSearch() {
    if (m_handle != INVALID_HANDLE_VALUE) FindClose(m_handle);
  }
  FileSearch(const FileSearch&) = delete;
  FileSearch& operator=(const FileSearch&) = delete;

  bool FindsFile() {
    if (m_handle == INVALID_HANDLE_VALUE) return false;
    do {
      if ((m_found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) return true;
    } while (FindNextFileW(m_handle, &m_found));
    return false;
  }
  const wchar_t* Name() const { return m_found.cFileName; }

 private:
  WIN32_FIND_DATAW m_found{};
  HANDLE m_handle;
};

}  // namespace

std::string Win32Drives::LogicalDriveStrings(std::uint32_t capacity) {
  std::string buffer(std::size_t{capacity} + 1, '\0');
  const DWORD length = GetLogicalDriveStringsA(capacity, buffer.data());
  if (length > capacity) return {};
  buffer.resize(length);
  return buffer;
}

unsigned Win32Drives::DriveType(const std::string& root) {
  const QuietErrors quiet;
  return GetDriveTypeA(ToAnsi(root).c_str());
}

std::optional<std::string> Win32Drives::VolumeLabel(const std::string& root, std::uint32_t capacity) {
  const QuietErrors quiet;
  std::string name(std::size_t{capacity} + 1, '\0');
  std::array<char, kFileSystemNameCapacity> fileSystem{};
  DWORD serial = 0;
  DWORD longestComponent = 0;
  DWORD flags = 0;
  if (!GetVolumeInformationA(ToAnsi(root).c_str(), name.data(), capacity, &serial, &longestComponent, &flags,
                             fileSystem.data(), kFileSystemNameCapacity)) {
    return std::nullopt;
  }
  return FromAnsi(name.c_str());
}

void Win32Drives::MciCommand(const std::string& command) {
  mciSendStringA(ToAnsi(command).c_str(), nullptr, 0, nullptr);
}

bool Win32Drives::FileMatches(const std::string& pattern) {
  const QuietErrors quiet;
  return FileSearch(Wide(pattern)).FindsFile();
}

std::string Win32Drives::FirstFile(const std::string& pattern) {
  const QuietErrors quiet;
  FileSearch search(Wide(pattern));
  if (!search.FindsFile()) return {};
  return pattern.substr(0, pattern.rfind('\\') + 1) + Narrow(search.Name());
}

}  // namespace kxrestore::win32
