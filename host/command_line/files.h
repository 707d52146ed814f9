// Opens files by UTF-8 names.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include "base/utf16.h"

namespace kxrestore::cli {

inline std::ifstream OpenFile(const std::string& name) {
#ifdef _WIN32
  return std::ifstream(std::filesystem::path(ToWide(name)), std::ios::binary);
#else
  return std::ifstream(name, std::ios::binary);
#endif
}

}  // namespace kxrestore::cli
