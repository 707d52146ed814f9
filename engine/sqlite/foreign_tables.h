// Tables from a source other than a SQLite file. They are attached to an empty in-memory database, where
// statements use them like any other tables.
#pragma once

struct sqlite3;

namespace kxrestore::engine::sqlite {

class ForeignTables {
 public:
  virtual ~ForeignTables() = default;

  // Creates the tables in the database of this connection. The connection must not outlive this object.
  virtual void Attach(sqlite3* connection) = 0;

  // Raises the error that made a statement fail if these tables caused it; otherwise returns. `message`:
  // SQLite's message.
  virtual void RaiseFailure(const char* message) = 0;

  // Prefix of the idxStr of a plan (xBestIndex) that finds at most one row.
  static constexpr const char* kOneRow = "u";
};

}  // namespace kxrestore::engine::sqlite
