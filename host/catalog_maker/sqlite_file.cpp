#include "host/catalog_maker/sqlite_file.h"

#include <filesystem>
#include <string_view>
#include <system_error>

namespace kxrestore::sample {

Database MakeFile(const std::string& path, const char* tables) {
  for (const std::string_view suffix : {"", "-journal", "-wal", "-shm"}) {
    const std::string name = path + std::string(suffix);
    std::error_code problem;
    std::filesystem::remove(std::u8string(name.begin(), name.end()), problem);
    if (problem) throw Error(problem.value(), name + ": " + problem.message(), "make_catalog");
  }
  sqlite3* raw = nullptr;
  const int code = sqlite3_open_v2(path.c_str(), &raw, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
  Database database(raw);
  if (code != SQLITE_OK) throw Error(code, path + ": " + sqlite3_errstr(code), "make_catalog");
  Execute(raw, "PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF; PRAGMA cache_size=-65536; BEGIN");
  Execute(raw, tables);
  return database;
}

void Execute(sqlite3* database, const char* sql) {
  if (const int code = sqlite3_exec(database, sql, nullptr, nullptr, nullptr); code != SQLITE_OK) {
    throw Error(code, sqlite3_errmsg(database), "make_catalog");
  }
}

void Statement::Run(std::initializer_list<Cell> parameters) {
  struct Bind {
    sqlite3_stmt* statement;
    int parameter;
    int operator()(std::monostate) const { return sqlite3_bind_null(statement, parameter); }
    int operator()(std::int64_t number) const { return sqlite3_bind_int64(statement, parameter, number); }
    int operator()(std::string_view text) const {
      return sqlite3_bind_text(statement, parameter, text.data(), static_cast<int>(text.size()),
                               SQLITE_STATIC);
    }
  };
  int parameter = 0;
  for (const Cell& cell : parameters) Check(std::visit(Bind{m_statement, ++parameter}, cell));
  sqlite3_step(m_statement);
  Check(sqlite3_reset(m_statement));
}

}  // namespace kxrestore::sample
