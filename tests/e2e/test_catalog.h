// A small catalog file in a folder of its own, whose every row a test can name.
//
//   Documents   run 1, the newest: C:\Data\a.txt, C:\Data\Reports\b.doc, D:\y.txt, a row that is not live,
//               and C:\Data\Reports\a very long name.xls
//               run 2: C:\Data\a.txt
//   Mail        run 3: C:\Mail\box.pst
#pragma once

#include <cstdint>
#include <set>
#include <string>

#include "host/catalog_maker/model.h"

namespace kxrestore::e2e {

inline constexpr std::int64_t kNewA = 1, kNewB = 2, kNewLong = 3, kNewY = 4, kDead = 5, kOldA = 6, kBox = 7;

class TestCatalog {
 public:
  TestCatalog();
  ~TestCatalog();
  TestCatalog(const TestCatalog&) = delete;
  TestCatalog& operator=(const TestCatalog&) = delete;

  static void AddRows(sample::CatalogSink& rows);  // the same rows for a catalog elsewhere

  const std::wstring& Folder() const { return m_folder; }  // with its backslash
  std::wstring Path() const { return m_folder + L"catalog.db"; }

  std::set<std::int64_t> Marked() const { return Query("SELECT ID FROM Catalog WHERE Restore <> 0"); }
  void Mark(std::int64_t id) const {
    Query("UPDATE Catalog SET Restore = 1 WHERE ID = " + std::to_string(id));
  }
  std::set<std::int64_t> Query(const std::string& sql) const;  // integers of the first column

 private:
  std::wstring m_folder;
};

}  // namespace kxrestore::e2e
