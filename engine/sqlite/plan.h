// A statement of the catalog's dialect, translated and prepared once.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/plan_cache.h"
#include "engine/sqlite/statement.h"

namespace kxrestore::engine::sqlite {

enum class ColumnKind { kPlain, kBoolean, kDate };

struct PlanColumn {
  static constexpr std::size_t kNoTable = static_cast<std::size_t>(-1);
  std::string name;
  ColumnKind kind = ColumnKind::kPlain;
  std::size_t table = kNoTable;  // index into Plan::tables when the column can be changed
  std::string baseName;
};

struct PlanTable {
  std::string name;
  std::string alias;          // qualifies columns
  std::size_t rowColumn = 0;  // the hidden column with the row id
};

// UPDATE of some columns of one table by row id.
struct RowUpdate {
  std::vector<std::size_t> columns;
  bool disturbs = false;  // may move the row within an index that an open statement uses
  bool bounded = false;   // see Connection::IsBounded
  Statement statement;
};

struct Plan : CachedPlan {
  std::string sql;
  std::vector<PlanColumn> columns;  // visible to the caller
  std::vector<PlanTable> tables;    // for dynasets only
  std::vector<std::unique_ptr<RowUpdate>> updates;
  std::vector<Statement> idle;
  std::size_t allColumns = 0;  // with the hidden ones
  bool bounded = false;        // of an action
};

}  // namespace kxrestore::engine::sqlite
