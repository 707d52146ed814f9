// Reads the list of a file's tables and saved queries from its system tables.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/jet_file/table.h"

namespace kxrestore::engine::jet_file {

struct FileObject {
  enum class Kind { kTable, kLinkedTable, kQuery } kind = Kind::kTable;
  std::string name;
  std::int32_t id = 0;
  std::uint32_t page = 0;  // a table's definition
  std::string linkedTo;    // a linked table's file or connection
};

// A line of a saved query, as stored. The attribute is the kind of line.
struct QueryLine {
  std::int32_t query = 0;  // FileObject::id
  int attribute = 0;
  int flag = 0;
  std::string order;  // sort key of the lines
  std::string name1, name2, expression;
};

struct SystemTables {
  std::vector<FileObject> objects;  // user objects, no system objects
  std::vector<QueryLine> queryLines;
};

// Error 3049.
SystemTables ReadSystemTables(const PageFile& file, CodePage& codePage);

}  // namespace kxrestore::engine::jet_file
