// SQLite's interface, redeclared so that ignoring the result of a call is a compiler error. Nearly all calls
// are made by Connection and Statement.
#pragma once

#include <sqlite3.h>

extern "C" {
[[nodiscard]] int sqlite3_open_v2(const char*, sqlite3**, int, const char*);
[[nodiscard]] int sqlite3_exec(sqlite3*, const char*, int (*)(void*, int, char**, char**), void*, char**);
[[nodiscard]] int sqlite3_prepare_v3(sqlite3*, const char*, int, unsigned int, sqlite3_stmt**, const char**);
[[nodiscard]] int sqlite3_step(sqlite3_stmt*);
[[nodiscard]] int sqlite3_bind_int64(sqlite3_stmt*, int, sqlite3_int64);
[[nodiscard]] int sqlite3_bind_double(sqlite3_stmt*, int, double);
[[nodiscard]] int sqlite3_bind_null(sqlite3_stmt*, int);
[[nodiscard]] int sqlite3_bind_text64(sqlite3_stmt*, int, const char*, sqlite3_uint64, void (*)(void*),
                                      unsigned char);
[[nodiscard]] int sqlite3_extended_result_codes(sqlite3*, int);
[[nodiscard]] int sqlite3_busy_handler(sqlite3*, int (*)(void*, int), void*);
[[nodiscard]] int sqlite3_db_config(sqlite3*, int, ...);
[[nodiscard]] int sqlite3_set_authorizer(
    sqlite3*, int (*)(void*, int, const char*, const char*, const char*, const char*), void*);
[[nodiscard]] int sqlite3_create_function_v2(sqlite3*, const char*, int, int, void*,
                                             void (*)(sqlite3_context*, int, sqlite3_value**),
                                             void (*)(sqlite3_context*, int, sqlite3_value**),
                                             void (*)(sqlite3_context*), void (*)(void*));
[[nodiscard]] int sqlite3_create_collation_v2(sqlite3*, const char*, int, void*,
                                              int (*)(void*, int, const void*, int, const void*),
                                              void (*)(void*));
[[nodiscard]] int sqlite3_table_column_metadata(sqlite3*, const char*, const char*, const char*, const char**,
                                                const char**, int*, int*, int*);
[[nodiscard]] int sqlite3_initialize();
[[nodiscard]] int sqlite3_vfs_register(sqlite3_vfs*, int);
}

namespace kxrestore::engine::sqlite {

// A result code that must be checked: pass it to Connection::Check, or test it.
class [[nodiscard]] Outcome {
 public:
  explicit Outcome(int code) : m_code(code) {}

  int Code() const { return m_code; }
  bool IsOk() const { return m_code == SQLITE_OK; }
  bool IsRow() const { return m_code == SQLITE_ROW; }
  bool IsDone() const { return m_code == SQLITE_DONE; }
  bool IsBusy() const { return (m_code & 0xFF) == SQLITE_BUSY; }

 private:
  int m_code;
};

}  // namespace kxrestore::engine::sqlite
