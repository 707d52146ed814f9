// catalog_copy FROM TO: copies a catalog of the desktop engine, or any other catalog file, into a new SQLite
// catalog file or into an empty catalog on a server.
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include "base/error.h"
#include "engine/database.h"
#include "host/catalog_copier/catalog_copy.h"
#ifdef _WIN32
#include <objbase.h>

#include "base/utf16.h"
#endif

namespace {

constexpr const char* kUsage =
    "usage: catalog_copy FROM TO\n"
    "  FROM  a catalog file: .mdb, .accdb, or an SQLite catalog\n"
    "  TO    an SQLite catalog file that is not there yet, or \"ODBC;...\", the connect string of a server "
    "whose\n"
    "        catalog was made by one of the scripts in host/sql/ and is still empty\n";

int Run(const std::vector<std::string>& words) {
  if (words.size() != 2 || words[0].empty() || words[1].empty()) {
    std::cerr << kUsage;
    return 2;
  }
  try {
    const auto workspace = kxrestore::engine::MakeDefaultWorkspace();
    const auto progress = [](const char* doing, const std::string& table, std::int64_t rows,
                             std::int64_t of) {
      std::fprintf(stderr, "\r%s %s: %lld of %lld rows   ", doing, table.c_str(),
                   static_cast<long long>(rows), static_cast<long long>(of));
    };
    const auto copied = kxrestore::host::CopyCatalog(*workspace, words[0], words[1], progress);
    std::cerr << "\r" << std::string(60, ' ') << "\r";
    for (const auto& table : copied) std::cout << table.name << ": " << table.rows << " rows, compared\n";
    return 0;
  } catch (const kxrestore::Error& error) {
    std::cerr << "\ncatalog_copy: (" << error.Number() << ") " << error.Description() << '\n';
    return 1;
  }
}

}  // namespace

#ifdef _WIN32
int wmain(int count, wchar_t** words) {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  std::vector<std::string> texts;
  for (int i = 1; i < count; ++i) texts.push_back(kxrestore::FromWide(std::wstring_view(words[i])));
  const int result = Run(texts);
  CoUninitialize();
  return result;
}
#else
int main(int count, char** words) {
  return Run({words + 1, words + count});
}
#endif
