#include "tests/e2e/test_catalog.h"

#include <windows.h>

#include <sqlite3.h>

#include <filesystem>
#include <memory>
#include <stdexcept>

#include "component/com/wide_text.h"
#include "host/catalog_maker/sqlite_writer.h"

namespace kxrestore::e2e {
namespace {

using component::com::FromWide;

sample::FileRow File(std::int64_t id, std::int64_t set, const std::string& extension,
                     const std::string& path) {
  sample::FileRow row;
  row.id = id;
  row.dateStamp = "2026-11-01 02:25:30";
  row.setId = set;
  row.extension = extension;
  row.filename = row.origName = path;
  row.file = path.substr(path.find_last_of('\\') + 1);
  row.origSize = 1000 * id;
  row.status = id == kDead ? 3 : 2;
  if (id == kNewLong) row.longPathId = 1;
  return row;
}

}  // namespace

void TestCatalog::AddRows(sample::CatalogSink& rows) {
  rows.AddSet({1, "Documents"});
  rows.AddSet({2, "Mail"});
  rows.AddRun({1, "2026-11-01 02:25:30", "001", false, 6});
  rows.AddRun({1, "2026-11-02 02:25:30", "002", false, 6});
  rows.AddRun({2, "2026-11-03 00:00:00", "003", false, 6});
  rows.AddLongPath({1, "C:\\Data\\Reports\\a very long name.xls"});
  rows.AddFile(File(kNewA, 1, "002", "C:\\Data\\a.txt"));
  rows.AddFile(File(kNewB, 1, "002", "C:\\Data\\Reports\\b.doc"));
  rows.AddFile(File(kNewLong, 1, "002", "C:\\Data\\Reports\\AVERYL~1.XLS"));
  rows.AddFile(File(kNewY, 1, "002", "D:\\y.txt"));
  rows.AddFile(File(kDead, 1, "002", "C:\\Data\\dead.txt"));
  rows.AddFile(File(kOldA, 1, "001", "C:\\Data\\a.txt"));
  rows.AddFile(File(kBox, 2, "003", "C:\\Mail\\box.pst"));
}

TestCatalog::TestCatalog() {
  wchar_t temporary[MAX_PATH];
  GetTempPathW(MAX_PATH, temporary);
  // With a blank and characters outside the system's code page, as users have them.
  m_folder = std::wstring(temporary) + L"kx e2e \u6F22 " + std::to_wstring(GetCurrentProcessId()) + L"\\";
  std::filesystem::create_directories(m_folder);

  sample::WriteCatalogFile(FromWide(Path()), AddRows);
}

TestCatalog::~TestCatalog() {
  std::error_code ignored;
  std::filesystem::remove_all(m_folder, ignored);
}

std::set<std::int64_t> TestCatalog::Query(const std::string& sql) const {
  sqlite3* raw = nullptr;
  const int opened = sqlite3_open_v2(FromWide(Path()).c_str(), &raw, SQLITE_OPEN_READWRITE, nullptr);
  const std::unique_ptr<sqlite3, int (*)(sqlite3*)> database(raw, sqlite3_close_v2);
  sqlite3_busy_timeout(raw, 5000);
  std::set<std::int64_t> ids;
  const auto collect = [](void* list, int, char** values, char**) {
    static_cast<std::set<std::int64_t>*>(list)->insert(std::stoll(values[0]));
    return 0;
  };
  if (opened != SQLITE_OK || sqlite3_exec(raw, sql.c_str(), collect, &ids, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sqlite3_errmsg(raw));
  }
  return ids;
}

}  // namespace kxrestore::e2e
