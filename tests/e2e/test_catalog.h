// A small catalog file with a named constant for each row. The path of its folder contains a blank and a
// character outside the system's code page.
//
//   Documents   run 1, the newest: C:\Data\a.txt, C:\Data\Reports\b.doc, D:\y.txt, a row that is not live,
//               and C:\Data\Reports\a very long name.xls
//               run 2: C:\Data\a.txt
//   Mail        run 3: C:\Mail\box.pst
#pragma once

#include "tests/catalog/catalog_file.h"

namespace kxrestore::e2e {

inline constexpr std::int64_t kNewA = 1, kNewB = 2, kNewLong = 3, kNewY = 4, kDead = 5, kOldA = 6, kBox = 7;

class TestCatalog : public catalog_test::CatalogFile {
 public:
  TestCatalog() : CatalogFile(AddRows, u8"kx e2e \u6F22") {}

  static void AddRows(sample::CatalogSink& rows) {
    rows.AddSet({1, "Documents"});
    rows.AddSet({2, "Mail"});
    rows.AddRun({1, "2026-11-01 02:25:30", "001", false, 6});
    rows.AddRun({1, "2026-11-02 02:25:30", "002", false, 6});
    rows.AddRun({2, "2026-11-03 00:00:00", "003", false, 6});
    rows.AddLongPath({1, "C:\\Data\\Reports\\a very long name.xls"});
    const auto add = [&](std::int64_t id, std::int64_t set, const char* extension, const std::string& path) {
      sample::FileRow row = catalog_test::Live(id, path);
      row.setId = set;
      row.extension = extension;
      row.file = path.substr(path.find_last_of('\\') + 1);
      if (id == kDead) row.status = 3;
      if (id == kNewLong) row.longPathId = 1;
      rows.AddFile(row);
    };
    add(kNewA, 1, "002", "C:\\Data\\a.txt");
    add(kNewB, 1, "002", "C:\\Data\\Reports\\b.doc");
    add(kNewLong, 1, "002", "C:\\Data\\Reports\\AVERYL~1.XLS");
    add(kNewY, 1, "002", "D:\\y.txt");
    add(kDead, 1, "002", "C:\\Data\\dead.txt");
    add(kOldA, 1, "001", "C:\\Data\\a.txt");
    add(kBox, 2, "003", "C:\\Mail\\box.pst");
  }

  std::wstring Folder() const { return m_folder.wstring() + L"\\"; }
  std::wstring Path() const { return (m_folder / L"catalog.db").wstring(); }
  void Mark(std::int64_t id) const {
    Execute("UPDATE Catalog SET Restore = 1 WHERE ID = " + std::to_string(id));
  }
};

}  // namespace kxrestore::e2e
