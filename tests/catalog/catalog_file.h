// A small catalog file with a test's own rows, and access to the marks in it.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/catalog_maker/model.h"
#include "host/catalog_maker/sqlite_writer.h"

namespace kxrestore::catalog_test {

// A live row of set 1 and run "001" with defaults for what most tests ignore.
inline sample::FileRow Live(std::int64_t id, std::string origName) {
  sample::FileRow row;
  row.id = id;
  row.dateStamp = "2026-03-01 10:00:00";
  row.setId = 1;
  row.extension = "001";
  row.filename = origName;
  row.file = origName;
  row.origSize = 100 + id;
  row.status = 2;
  row.origName = std::move(origName);
  return row;
}

// Sets 1, 2 and 3 are called "Set 1" and so on.
inline void AddRows(sample::CatalogSink& catalog, const std::vector<sample::FileRow>& rows,
                    const std::vector<sample::RunRow>& runs = {},
                    const std::vector<sample::LongPathRow>& longPaths = {}) {
  for (const int set : {1, 2, 3}) catalog.AddSet({set, "Set " + std::to_string(set)});
  for (const auto& run : runs) catalog.AddRun(run);
  for (const auto& longPath : longPaths) catalog.AddLongPath(longPath);
  for (const auto& row : rows) catalog.AddFile(row);
}

class CatalogFile {
 public:
  explicit CatalogFile(const std::vector<sample::FileRow>& rows, const std::vector<sample::RunRow>& runs = {},
                       const std::vector<sample::LongPathRow>& longPaths = {}) {
    static const std::uint32_t process = std::random_device()();  // several test programs run at a time
    static std::uint32_t number = 0;
    m_path = std::filesystem::temp_directory_path() /
             ("kxcatalog_" + std::to_string(process) + "_" + std::to_string(++number) + ".db");
    sample::WriteCatalogFile(Path(),
                             [&](sample::CatalogSink& sink) { AddRows(sink, rows, runs, longPaths); });
  }
  ~CatalogFile() {
    std::error_code ignored;
    for (const char* suffix : {"", "-journal", "-wal", "-shm"}) {
      std::filesystem::remove(Path() + suffix, ignored);
    }
  }
  CatalogFile(const CatalogFile&) = delete;
  CatalogFile& operator=(const CatalogFile&) = delete;

  std::string Path() const { return m_path.string(); }

  void Execute(const std::string& sql) { Query(sql); }
  // Without its table nothing of a catalog works. The saved queries stay as they are.
  void HideTable() { Execute("PRAGMA legacy_alter_table=ON; ALTER TABLE Catalog RENAME TO Elsewhere"); }
  void ShowTable() { Execute("PRAGMA legacy_alter_table=ON; ALTER TABLE Elsewhere RENAME TO Catalog"); }

  std::set<std::int64_t> Marked() { return Query("SELECT ID FROM Catalog WHERE Restore <> 0"); }

  // The integers of the first column, read beside the engine under test.
  std::set<std::int64_t> Query(const std::string& sql) {
    sqlite3* raw = nullptr;
    const int opened = sqlite3_open_v2(Path().c_str(), &raw, SQLITE_OPEN_READWRITE, nullptr);
    const std::unique_ptr<sqlite3, int (*)(sqlite3*)> database(raw, sqlite3_close);
    sqlite3_busy_timeout(raw, 2000);
    std::set<std::int64_t> found;
    const auto collect = [](void* target, int, char** values, char**) {
      if (values[0] != nullptr) static_cast<std::set<std::int64_t>*>(target)->insert(std::stoll(values[0]));
      return 0;
    };
    if (opened != SQLITE_OK || sqlite3_exec(raw, sql.c_str(), collect, &found, nullptr) != SQLITE_OK) {
      throw std::runtime_error(sqlite3_errmsg(raw));
    }
    return found;
  }

 private:
  std::filesystem::path m_path;
};

}  // namespace kxrestore::catalog_test
