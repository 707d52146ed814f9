// Writes a new SQLite file. Failures are kxrestore::Error.
#pragma once

#include <sqlite3.h>

#include <initializer_list>
#include <memory>
#include <string>

#include "base/error.h"
#include "host/catalog_maker/table_writer.h"

namespace kxrestore::sample {

struct CloseDatabase {
  void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
};
using Database = std::unique_ptr<sqlite3, CloseDatabase>;

// Replaces the file `path` (UTF-8) by one with the tables, inside a transaction that the caller commits. A
// half-made file is useless, so nothing is synced before the commit.
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

  // Executes it with these parameters.
  void Run(std::initializer_list<Cell> parameters);

 private:
  void Check(int code) {
    if (code != SQLITE_OK) throw Error(code, sqlite3_errmsg(m_database), "make_catalog");
  }

  sqlite3* m_database;
  sqlite3_stmt* m_statement = nullptr;
};

}  // namespace kxrestore::sample
