// Presents the tables of a file to SQLite. Only requested columns are decoded; conditions on columns are
// passed down, and columns that are searched repeatedly get an index in memory.
#pragma once

#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "engine/jet_file/marks.h"
#include "engine/jet_file/row_index.h"

struct sqlite3;

namespace kxrestore::engine::jet_file {

// State shared by the virtual tables of one connection.
struct TableServer {
  JetFile& file;
  Marks& marks;
  std::function<bool()> turn = [] { return true; };
  // An exception caught before it could pass through SQLite.
  std::exception_ptr failure;
  // Counts changes by other programs; row numbers of an earlier epoch are invalid.
  std::uint32_t epoch = 0;

  struct LookUps {
    int count = 0;
    std::shared_ptr<RowIndex> index;
  };
  // By table and columns.
  std::map<std::pair<const Table*, std::vector<std::uint16_t>>, LookUps> lookUps;

  void Forget();  // after a change by another program
};

// The only column that can be updated.
inline constexpr const char* kMarkColumn = "Restore";

// Creates a virtual table for each table of the file. `server` must outlive the connection. Tables that
// SQLite rejects are left out.
void AttachTables(sqlite3* connection, TableServer& server);

// A row's number: epoch, page and slot.
std::int64_t RowNumber(std::uint32_t epoch, RowPointer home);

}  // namespace kxrestore::engine::jet_file
