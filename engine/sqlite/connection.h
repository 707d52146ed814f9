// A connection to a catalog file. Converts SQLite's result codes to errors of the engine.
//
// Catalogs are untrusted: their views, triggers and computed columns may only read and compute, and page
// structures are checked. A commit that has returned is on the disk.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "engine/sqlite/api.h"
#include "engine/sqlite/foreign_tables.h"
#include "engine/sqlite/statement.h"
#include "engine/sqlite/waiter.h"

namespace kxrestore::engine::sqlite {

// A table or view in the schema; all fields are empty if there is none.
struct SchemaEntry {
  std::string type, name, sql;
};

enum class Doing { kOpening, kReading, kWriting };

class Connection {
 public:
  // Opens an existing file. `exclusive`: locks out other processes. `tables`: served instead of the file's
  // content if the file is not a SQLite database.
  Connection(std::string file, bool exclusive, std::shared_ptr<Waiter> waiter,
             std::shared_ptr<ForeignTables> tables = nullptr);
  ~Connection() = default;
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  const std::string& File() const { return m_file; }
  bool IsReadOnly() const { return m_readOnly; }
  Waiter& Waits() const { return *m_waiter; }
  bool InTransaction() const { return sqlite3_get_autocommit(Get()) == 0; }
  std::int64_t Changes() const { return sqlite3_changes64(Get()); }  // of the last statement, in rows

  Statement Prepare(std::string_view sql, Doing doing = Doing::kReading) const;
  // Enlarges the page cache, once. Marks touch pages all over a catalog, which then stay in memory until the
  // commit. For connections that only read, a large cache costs more than it saves.
  void PrepareForWriting();
  // Raises the error of a failed outcome. `piece` is the statement or name concerned.
  void Check(Outcome outcome, Doing doing = Doing::kReading, std::string_view piece = {}) const {
    if (!outcome.IsOk()) Raise(outcome.Code(), doing, piece);
  }
  [[noreturn]] void Raise(int code, Doing doing, std::string_view piece = {}) const;

  SchemaEntry FindEntry(std::string_view name) const;
  // The declaration of a column of a table or, unless `tablesOnly`, of a view; nothing if there is none.
  struct Column {
    std::string type, collation;
    bool inKey = false;
  };
  std::optional<Column> FindColumn(const std::string& table, const std::string& column,
                                   bool tablesOnly = false) const;

  // Whether a writing statement does a small, bounded amount of work: no loops, no triggers.
  bool IsBounded(std::string_view sql) const;

 private:
  struct Closer {
    Waiter* waiter;
    void operator()(sqlite3* connection) const noexcept;
  };

  sqlite3* Get() const { return m_connection.get(); }
  void Secure();
  void Execute(const char* sql, Doing doing);
  static int Progress(void* waiter) noexcept;
  static int Busy(void* waiter, int tried) noexcept;
  static int Authorize(void* connection, int action, const char* first, const char* second,
                       const char* database, const char* trigger) noexcept;

  std::string m_file;
  bool m_readOnly = false, m_preparedForWriting = false;
  mutable std::string m_refusedTrigger;  // by the last Prepare
  std::shared_ptr<Waiter> m_waiter;
  std::shared_ptr<ForeignTables> m_tables;  // outlives the connection
  std::unique_ptr<sqlite3, Closer> m_connection;
};

}  // namespace kxrestore::engine::sqlite
