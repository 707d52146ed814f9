// Access to a table's rows for one statement: by row number, through an index in memory, or by a filtered
// walk.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "engine/jet_file/row_filter.h"
#include "engine/jet_file/virtual_table.h"

namespace kxrestore::engine::jet_file {

// Chooses which conditions of a statement are passed down, and estimates the cost; implements xBestIndex.
int PlanAccess(const TableDefinition& table, sqlite3_index_info& info);

// Whether the integers in this column are unique.
bool IsRowKey(const TableDefinition& table, const Column& column);

// The row of that number; false when it is gone.
bool FindByNumber(TableServer& server, Table& table, std::int64_t number, FoundRow& found);

class TableCursor {
 public:
  TableCursor(TableServer& server, Table& table) : m_server(server), m_table(table) {}
  TableCursor(const TableCursor&) = delete;
  TableCursor& operator=(const TableCursor&) = delete;

  // Both move to a row and return SQLite result codes. `plan` comes from PlanAccess.
  int Start(const char* plan, int count, sqlite3_value** values);
  int Next();

  bool AtEnd() const { return m_atEnd; }
  void Read(sqlite3_context* context, std::size_t column);
  std::int64_t Number() const { return RowNumber(m_epoch, m_found.home); }

 private:
  struct Condition {
    char sign = 0;
    int column = 0;
    std::vector<Wanted> wanted;
    bool usable = false;  // the values have the column's type
  };
  bool Take(std::string_view& plan, sqlite3_value* value, Condition& condition) const;
  int StartLookUp(const std::vector<Condition>& conditions, bool& started);

  TableServer& m_server;
  Table& m_table;
  RowFilter m_filter;
  std::optional<Table::Walk> m_walk;
  std::shared_ptr<const RowIndex> m_index;
  std::span<const std::uint64_t> m_homes;  // remaining results of the index
  bool m_atEnd = true;
  std::uint32_t m_epoch = 0;  // at the start of the walk
  std::size_t m_seen = 0;
  FoundRow m_found;
  std::string m_text;
};

}  // namespace kxrestore::engine::jet_file
