// A database file in the making. Failures are kxrestore::Error.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "base/error.h"

namespace kxrestore::sample {

struct CloseDatabase {
  void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
};
using Database = std::unique_ptr<sqlite3, CloseDatabase>;

// Replaces the file `path` (UTF-8) by one with the tables, within a transaction that the caller commits. A
// half-made file is thrown away anyway, so nothing is safe before that.
Database MakeFile(const std::string& path, const char* tables);

void Execute(sqlite3* database, const char* sql);

class Statement {
 public:
  Statement(sqlite3* database, const char* sql) : m_database(database) {
    Check(sqlite3_prepare_v3(database, sql, -1, SQLITE_PREPARE_PERSISTENT, &m_statement, nullptr));
  }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;
  ~Statement() { sqlite3_finalize(m_statement); }

  // Parameters in their order; the texts must live until Run().
  Statement& Bind(std::int64_t value) {
    Check(sqlite3_bind_int64(m_statement, ++m_parameter, value));
    return *this;
  }
  Statement& Bind(const std::string& value) {
    Check(sqlite3_bind_text(m_statement, ++m_parameter, value.data(), static_cast<int>(value.size()),
                            SQLITE_STATIC));
    return *this;
  }
  template <typename T>
  Statement& Bind(const std::optional<T>& value) {
    if (value) return Bind(*value);
    Check(sqlite3_bind_null(m_statement, ++m_parameter));
    return *this;
  }

  void Run() {
    sqlite3_step(m_statement);
    m_parameter = 0;
    Check(sqlite3_reset(m_statement));
  }

 private:
  void Check(int code) {
    if (code != SQLITE_OK) throw Error(code, sqlite3_errmsg(m_database), "make_catalog");
  }

  sqlite3* m_database;
  sqlite3_stmt* m_statement = nullptr;
  int m_parameter = 0;
};

}  // namespace kxrestore::sample
