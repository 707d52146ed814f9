// The registry of the machine, through the ANSI functions.
#pragma once

#include "platform/registry.h"

namespace kxrestore::win32 {

class Win32Registry final : public platform::Registry {
 public:
  long OpenKey(std::uint32_t root, const std::string& path, std::uint32_t access, Key& key) override;
  long CreateKey(std::uint32_t root, const std::string& path, std::uint32_t access, Key& key) override;
  long QueryValue(Key key, const std::string& name, std::uint32_t& type, std::uint32_t& size) override;
  long ReadValue(Key key, const std::string& name, std::vector<std::uint8_t>& data) override;
  long SetValue(Key key, const std::string& name, std::uint32_t type,
                const std::vector<std::uint8_t>& data) override;
  void CloseKey(Key key) override;
};

}  // namespace kxrestore::win32
