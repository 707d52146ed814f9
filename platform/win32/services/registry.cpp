#include "platform/win32/services/registry.h"

#include "platform/win32/wide_text.h"
#include "platform/win32/win32.h"

namespace kxrestore::win32 {

namespace {

HKEY Handle(platform::Registry::Key key) {
  return reinterpret_cast<HKEY>(key);
}

// Predefined keys are 32-bit numbers, sign-extended to the width of a handle.
HKEY Root(std::uint32_t root) {
  return reinterpret_cast<HKEY>(static_cast<LONG_PTR>(static_cast<LONG>(root)));
}

bool IsText(DWORD type) {
  return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
}

std::string_view Text(const std::vector<std::uint8_t>& data) {
  return {reinterpret_cast<const char*>(data.data()), data.size()};
}

}  // namespace

long Win32Registry::OpenKey(std::uint32_t root, const std::string& path, std::uint32_t access, Key& key) {
  HKEY opened = nullptr;
  const long result = RegOpenKeyExA(Root(root), ToAnsi(path).c_str(), 0, access, &opened);
  if (result == ERROR_SUCCESS) key = reinterpret_cast<Key>(opened);
  return result;
}

long Win32Registry::CreateKey(std::uint32_t root, const std::string& path, std::uint32_t access, Key& key) {
  HKEY opened = nullptr;
  const long result = RegCreateKeyExA(Root(root), ToAnsi(path).c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                      access, nullptr, &opened, nullptr);
  if (result == ERROR_SUCCESS) key = reinterpret_cast<Key>(opened);
  return result;
}

long Win32Registry::QueryValue(Key key, const std::string& name, std::uint32_t& type, std::uint32_t& size) {
  DWORD valueType = 0;
  DWORD valueSize = 0;
  const long result =
      RegQueryValueExA(Handle(key), ToAnsi(name).c_str(), nullptr, &valueType, nullptr, &valueSize);
  type = valueType;
  size = valueSize;
  return result;
}

long Win32Registry::ReadValue(Key key, const std::string& name, std::vector<std::uint8_t>& data) {
  const std::string ansiName = ToAnsi(name);
  DWORD type = 0;
  DWORD size = 0;
  long result = RegQueryValueExA(Handle(key), ansiName.c_str(), nullptr, &type, nullptr, &size);
  if (result != ERROR_SUCCESS) return result;
  do {  // another program may be writing a longer value
    data.resize(size);
    result = RegQueryValueExA(Handle(key), ansiName.c_str(), nullptr, &type, data.data(), &size);
  } while (result == ERROR_MORE_DATA);
  if (result != ERROR_SUCCESS) return result;
  data.resize(size);
  if (IsText(type)) {
    const std::string text = FromAnsi(Text(data));
    data.assign(text.begin(), text.end());
  }
  return result;
}

long Win32Registry::SetValue(Key key, const std::string& name, std::uint32_t type,
                             const std::vector<std::uint8_t>& data) {
  std::string bytes(Text(data));
  if (IsText(type)) bytes = ToAnsi(bytes);
  return RegSetValueExA(Handle(key), ToAnsi(name).c_str(), 0, type,
                        reinterpret_cast<const BYTE*>(bytes.data()), static_cast<DWORD>(bytes.size()));
}

void Win32Registry::CloseKey(Key key) {
  RegCloseKey(Handle(key));
}

}  // namespace kxrestore::win32
