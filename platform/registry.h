// Registry calls, mapped one to one. Handles are opaque; results are Windows error codes, 0 for success.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kxrestore::platform {

inline constexpr std::uint32_t kHkeyLocalMachine = 0x80000002;
inline constexpr std::uint32_t kHkeyCurrentUser = 0x80000001;
inline constexpr std::uint32_t kKeyAllAccess = 0x3F;
inline constexpr std::uint32_t kRegSz = 1;
inline constexpr std::uint32_t kRegDword = 4;

class Registry {
 public:
  using Key = std::uintptr_t;
  virtual ~Registry() = default;

  [[nodiscard]] virtual long OpenKey(std::uint32_t root, const std::string& path, std::uint32_t access,
                                     Key& key) = 0;
  [[nodiscard]] virtual long CreateKey(std::uint32_t root, const std::string& path, std::uint32_t access,
                                       Key& key) = 0;
  // Type and size of a value, without its data.
  [[nodiscard]] virtual long QueryValue(Key key, const std::string& name, std::uint32_t& type,
                                        std::uint32_t& size) = 0;
  // The data: for strings the bytes as stored (converted to UTF-8), including a NUL if one is stored.
  [[nodiscard]] virtual long ReadValue(Key key, const std::string& name, std::vector<std::uint8_t>& data) = 0;
  [[nodiscard]] virtual long SetValue(Key key, const std::string& name, std::uint32_t type,
                                      const std::vector<std::uint8_t>& data) = 0;
  virtual void CloseKey(Key key) = 0;
};

}  // namespace kxrestore::platform
