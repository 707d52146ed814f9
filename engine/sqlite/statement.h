// A prepared statement, owned.
#pragma once

#include <sqlite3.h>

#include <memory>

#include "engine/value.h"

namespace kxrestore::engine::sqlite {

struct Finalizer {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, Finalizer>;

// A text is copied.
void Bind(sqlite3_stmt* statement, int index, const Value& value);

// Resets at the end of a block, whatever happens in it.
class ResetGuard {
 public:
  explicit ResetGuard(sqlite3_stmt* statement) : m_statement(statement) {}
  ~ResetGuard() { sqlite3_reset(m_statement); }
  ResetGuard(const ResetGuard&) = delete;
  ResetGuard& operator=(const ResetGuard&) = delete;

 private:
  sqlite3_stmt* m_statement;
};

}  // namespace kxrestore::engine::sqlite
