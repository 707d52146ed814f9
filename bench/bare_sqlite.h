// The baseline of the comparisons: a catalog file through SQLite's own functions.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace kxrestore::bench {

// The catalog with exactly `rows` live plain files in run "001" of set 1. It is created once and kept for
// later runs.
std::string BenchCatalog(std::int64_t rows);

inline constexpr int kBenchSet = 1;
inline constexpr char kBenchExtension[] = "001";

class BareStatement {
 public:
  BareStatement(sqlite3* database, const char* sql);
  BareStatement(const BareStatement&) = delete;
  BareStatement& operator=(const BareStatement&) = delete;
  ~BareStatement() { sqlite3_finalize(m_statement); }

  void Bind(int parameter, std::int64_t value) { sqlite3_bind_int64(m_statement, parameter, value); }
  void Bind(int parameter, std::string_view text) {
    sqlite3_bind_text(m_statement, parameter, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
  }
  bool Step();  // whether there is a row
  void Reset() { sqlite3_reset(m_statement); }
  std::int64_t Integer(int column) { return sqlite3_column_int64(m_statement, column); }
  std::string_view Text(int column);

 private:
  sqlite3_stmt* m_statement = nullptr;
};

class BareDatabase {
 public:
  explicit BareDatabase(const std::string& path);
  void Execute(const char* sql);
  sqlite3* Get() const { return m_database.get(); }

 private:
  struct Close {
    void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
  };
  std::unique_ptr<sqlite3, Close> m_database;
};

// Clears all marks.
void ClearMarks(const std::string& path);
std::int64_t CountMarks(const std::string& path);

}  // namespace kxrestore::bench
