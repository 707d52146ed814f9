#include "bench/bare_sqlite.h"

#include <filesystem>

#include "base/error.h"
#include "host/catalog_maker/sample_catalog.h"

namespace kxrestore::bench {

namespace fs = std::filesystem;

namespace {

void Check(sqlite3* database, int code) {
  if (code != SQLITE_OK) throw Error(code, sqlite3_errmsg(database), "bench");
}

}  // namespace

std::string BenchCatalog(std::int64_t rows) {
  const fs::path folder = fs::current_path() / "catalogs";
  fs::create_directories(folder);
  const fs::path path = folder / ("one_run_" + std::to_string(rows) + ".db");
  if (!fs::exists(path)) {
    const std::string unfinished = path.string() + ".new";
    sample::MakeCatalog(unfinished, {.rows = static_cast<std::uint64_t>(rows), .oneRun = true});
    fs::rename(unfinished, path);
  }
  return path.string();
}

BareStatement::BareStatement(sqlite3* database, const char* sql) {
  Check(database, sqlite3_prepare_v3(database, sql, -1, SQLITE_PREPARE_PERSISTENT, &m_statement, nullptr));
}

bool BareStatement::Step() {
  const int code = sqlite3_step(m_statement);
  if (code != SQLITE_ROW && code != SQLITE_DONE) Check(sqlite3_db_handle(m_statement), code);
  return code == SQLITE_ROW;
}

std::string_view BareStatement::Text(int column) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(m_statement, column));
  return {text, static_cast<std::size_t>(sqlite3_column_bytes(m_statement, column))};
}

BareDatabase::BareDatabase(const std::string& path) {
  sqlite3* raw = nullptr;
  const int code = sqlite3_open_v2(path.c_str(), &raw, SQLITE_OPEN_READWRITE, nullptr);
  m_database.reset(raw);
  Check(raw, code);
}

void BareDatabase::Execute(const char* sql) {
  Check(m_database.get(), sqlite3_exec(m_database.get(), sql, nullptr, nullptr, nullptr));
}

void ClearMarks(const std::string& path) {
  BareDatabase(path).Execute("UPDATE Catalog SET Restore = 0 WHERE Restore <> 0");
}

std::int64_t CountMarks(const std::string& path) {
  BareDatabase database(path);
  BareStatement count(database.Get(), "SELECT count(*) FROM Catalog WHERE Restore <> 0");
  count.Step();
  return count.Integer(0);
}

}  // namespace kxrestore::bench
