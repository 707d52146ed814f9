// The tables of a file as SQLite sees them. Only what a statement asks for is decoded; conditions on columns
// are passed down, and columns that are looked up again and again get an index in memory.
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

// What the virtual tables of one connection share.
struct TableServer {
  JetFile& file;
  Marks& marks;
  std::function<bool()> turn = [] { return true; };
  // An exception that was caught on its way through SQLite.
  std::exception_ptr failure;
  // Counts the changes by other programs; a row's number is worth nothing in the next epoch.
  std::uint32_t epoch = 0;

  struct LookUps {
    int count = 0;
    std::shared_ptr<RowIndex> index;
  };
  // By table and columns.
  std::map<std::pair<const Table*, std::vector<std::uint16_t>>, LookUps> lookUps;

  void Forget();  // after a change by another program
};

// The one column whose values can be changed.
inline constexpr const char* kMarkColumn = "Restore";

// Makes a virtual table of each table of the file. `server` must outlive the connection. Tables that SQLite
// refuses are left out.
void AttachTables(sqlite3* connection, TableServer& server);

// A row's number: epoch, page and slot.
std::int64_t RowNumber(std::uint32_t epoch, RowPointer home);

}  // namespace kxrestore::engine::jet_file
