// A small catalog file with a test's own rows, and access to the marks in it.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/catalog_maker/model.h"
#include "host/catalog_maker/sqlite_writer.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::catalog_test {

// A live row of set 1 and run "001", with defaults for the columns that most tests ignore.
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

// Runs statements on a SQLite file without the engine under test, and creates a missing file. Returns the
// rows as "a|b|Null".
inline std::vector<std::string> SqliteRows(const std::string& path, const std::string& sql) {
  sqlite3* raw = nullptr;
  const int opened = sqlite3_open(path.c_str(), &raw);
  const std::unique_ptr<sqlite3, int (*)(sqlite3*)> database(raw, sqlite3_close);
  sqlite3_busy_timeout(raw, 5000);
  std::vector<std::string> rows;
  const auto collect = [](void* target, int columns, char** values, char**) {
    std::string& row = static_cast<std::vector<std::string>*>(target)->emplace_back();
    for (int i = 0; i < columns; ++i) row.append(i == 0 ? "" : "|").append(values[i] ? values[i] : "Null");
    return 0;
  };
  if (opened != SQLITE_OK || sqlite3_exec(raw, sql.c_str(), collect, &rows, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sqlite3_errmsg(raw));
  }
  return rows;
}

// A catalog in a temporary folder.
class CatalogFile {
 public:
  explicit CatalogFile(const std::vector<sample::FileRow>& rows, const std::vector<sample::RunRow>& runs = {},
                       const std::vector<sample::LongPathRow>& longPaths = {})
      : CatalogFile([&](sample::CatalogSink& sink) { AddRows(sink, rows, runs, longPaths); }, u8"kxcatalog") {
  }
  // `folder` is part of the folder's name.
  explicit CatalogFile(const std::function<void(sample::CatalogSink&)>& fill, const std::u8string& folder)
      : m_temporary(folder) {
    sample::WriteCatalogFile(Path(), fill);
  }

  std::string Path() const { return m_temporary.File("catalog.db"); }  // UTF-8

  void Execute(const std::string& sql) const { Query(sql); }
  // Without its table a catalog cannot be used. The saved queries do not change.
  void HideTable() const { Execute("PRAGMA legacy_alter_table=ON; ALTER TABLE Catalog RENAME TO Elsewhere"); }
  void ShowTable() const { Execute("PRAGMA legacy_alter_table=ON; ALTER TABLE Elsewhere RENAME TO Catalog"); }

  std::set<std::int64_t> Marked() const { return Query("SELECT ID FROM Catalog WHERE Restore <> 0"); }

  // The integers of the first column.
  std::set<std::int64_t> Query(const std::string& sql) const {
    std::set<std::int64_t> found;
    for (const std::string& row : SqliteRows(Path(), sql)) {
      if (!row.starts_with("Null")) found.insert(std::stoll(row));
    }
    return found;
  }

 protected:
  const engine::testing::TemporaryFolder m_temporary;
  const std::filesystem::path m_folder = m_temporary.Path();
};

}  // namespace kxrestore::catalog_test
