// The rows of a catalog as the values of its tables' columns, for any kind of database.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <variant>

#include "host/catalog_maker/model.h"

namespace kxrestore::sample {

struct DateText {
  std::string_view text;
  operator std::string_view() const { return text; }
};

// One value. Its text must stay valid until the row is stored.
using Cell = std::variant<std::monostate, bool, std::int64_t, std::string_view, DateText>;

enum class Table { kSetNames, kBackupAudit, kLongPaths, kCatalog };

// The columns of each table, by position: some of their names are reserved words of one server or another.
inline constexpr const char* kInsertStatements[] = {
    "INSERT INTO SetNames VALUES (?,?)",
    "INSERT INTO BackupAudit (SetNameID, DateStamp, Extension, Permanent, Status) VALUES (?,?,?,?,?)",
    "INSERT INTO LongPaths VALUES (?,?)",
    "INSERT INTO Catalog VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)",
};

class TableWriter : public CatalogSink {
 public:
  void AddSet(const SetRow& row) final;
  void AddRun(const RunRow& row) final;
  void AddLongPath(const LongPathRow& row) final;
  void AddFile(const FileRow& row) final;

 private:
  virtual void Insert(Table table, std::initializer_list<Cell> row) = 0;
};

}  // namespace kxrestore::sample
