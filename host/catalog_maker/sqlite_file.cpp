#include "host/catalog_maker/sqlite_file.h"

#include <filesystem>
#include <string_view>
#include <system_error>

namespace kxrestore::sample {

Database MakeFile(const std::string& path, const char* tables) {
  for (const std::string_view suffix : {"", "-journal", "-wal", "-shm"}) {
    const std::string name = path + std::string(suffix);
    std::error_code problem;
    std::filesystem::remove(std::u8string(name.begin(), name.end()), problem);
    if (problem) throw Error(problem.value(), name + ": " + problem.message(), "make_catalog");
  }
  sqlite3* raw = nullptr;
  const int code = sqlite3_open_v2(path.c_str(), &raw, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
  Database database(raw);
  if (code != SQLITE_OK) throw Error(code, path + ": " + sqlite3_errstr(code), "make_catalog");
  Execute(raw, "PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF; PRAGMA cache_size=-65536; BEGIN");
  Execute(raw, tables);
  return database;
}

void Execute(sqlite3* database, const char* sql) {
  if (const int code = sqlite3_exec(database, sql, nullptr, nullptr, nullptr); code != SQLITE_OK) {
    throw Error(code, sqlite3_errmsg(database), "make_catalog");
  }
}

}  // namespace kxrestore::sample
