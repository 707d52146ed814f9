// An owned prepared statement. Failures to bind, step and read values are raised or returned, never ignored.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/sqlite/api.h"
#include "engine/sqlite/waiter.h"
#include "engine/value.h"

namespace kxrestore::engine::sqlite {

class Connection;

class Statement {
 public:
  Statement() = default;
  // `connection` must outlive it.
  Statement(const Connection& connection, sqlite3_stmt* statement)
      : m_connection(&connection), m_statement(statement) {}

  explicit operator bool() const { return m_statement != nullptr; }
  sqlite3_stmt* Get() const { return m_statement.get(); }

  // Parameters are numbered from 1. Texts are copied.
  void Bind(int parameter, std::int64_t value);
  void Bind(int parameter, std::string_view value);
  void Bind(const std::vector<Value>& values);  // to all parameters

  // To the next row or the end.
  Outcome Step(Stop stop);
  // The same for short queries: whether there is a row. Raises failures.
  bool Next(std::string_view piece = {});
  void Reset() noexcept;

  // Values of the current row. Views are valid until the next step or reset.
  ValueView Read(int column) const;
  std::string Text(int column) const;  // "" for null
  std::int64_t Integer(int column) const { return sqlite3_column_int64(Get(), column); }
  int ColumnCount() const { return sqlite3_column_count(Get()); }
  std::string ColumnName(int column) const;

 private:
  struct Finalizer {
    void operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }
  };

  const Connection* m_connection = nullptr;
  std::unique_ptr<sqlite3_stmt, Finalizer> m_statement;
};

// Resets the statement at the end of a scope.
class ResetGuard {
 public:
  explicit ResetGuard(Statement& statement) : m_statement(statement) {}
  ~ResetGuard() { m_statement.Reset(); }
  ResetGuard(const ResetGuard&) = delete;
  ResetGuard& operator=(const ResetGuard&) = delete;

 private:
  Statement& m_statement;
};

}  // namespace kxrestore::engine::sqlite
