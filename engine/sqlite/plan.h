// SQLite's plans.
#pragma once

#include <memory>
#include <vector>

#include "engine/plan.h"
#include "engine/sqlite/statement.h"

namespace kxrestore::engine::sqlite {

struct RowUpdate {
  std::vector<std::size_t> columns;
  bool disturbs = false;  // may move the row within an index that an open statement uses
  bool bounded = false;   // see Connection::IsBounded
  Statement statement;
};

struct Plan : CachedPlan {
  std::vector<std::unique_ptr<RowUpdate>> updates;
  std::vector<Statement> idle;
  bool bounded = false;  // of an action
};

}  // namespace kxrestore::engine::sqlite
