// Tables that a session serves although they are not in a file of SQLite's: they are attached to an empty
// database in memory, and statements run over them as over any others.
#pragma once

struct sqlite3;

namespace kxrestore::engine::sqlite {

class ForeignTables {
 public:
  virtual ~ForeignTables() = default;

  // Makes the tables in the database of this connection, which does not outlive this.
  virtual void Attach(sqlite3* connection) = 0;

  // A statement has failed with this message: raises the error behind it when the tables know of one.
  virtual void RaiseFailure(const char* message) = 0;

  // What the plan of a table (xBestIndex) begins with when it finds one row at the most.
  static constexpr const char* kOneRow = "u";
};

}  // namespace kxrestore::engine::sqlite
