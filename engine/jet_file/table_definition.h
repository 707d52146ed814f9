// The definition of one table: its columns, its indexes and where its rows are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/jet_file/page_file.h"
#include "engine/jet_file/text_decoder.h"

namespace kxrestore::engine::jet_file {

enum class ColumnType : std::uint8_t {
  kYesNo = 1,
  kByte = 2,
  kInteger = 3,
  kLong = 4,
  kCurrency = 5,
  kSingle = 6,
  kDouble = 7,
  kDate = 8,
  kBinary = 9,
  kText = 10,
  kOle = 11,
  kMemo = 12,
  kGuid = 15,
  kNumeric = 16,
  kComplex = 18,  // attachments and lists
  kBigInteger = 19,
};

struct Column {
  std::string name;
  ColumnType type = ColumnType::kLong;
  std::uint16_t number = 0;         // its bit in the null mask, and its number in indexes
  std::uint16_t variableIndex = 0;  // of a column that is not fixed
  std::uint16_t fixedOffset = 0;    // after the column count
  std::uint16_t length = 0;         // bytes
  std::uint8_t scale = 0;           // of a numeric
  bool fixed = false;
  friend bool operator==(const Column&, const Column&) = default;
};

struct Index {
  std::vector<std::uint16_t> columns;  // their numbers
  std::vector<bool> ascending;
  std::uint32_t root = 0;
  bool unique = false;
  bool primary = false;
};

struct TableDefinition {
  std::uint32_t page = 0;
  std::string name;
  std::vector<Column> columns;
  std::vector<Index> indexes;
  std::uint32_t rowCount = 0;  // a hint
  std::uint16_t variableColumns = 0;
  RowPointer ownedPages;

  const Column* Find(std::string_view columnName) const;  // ignores case; null when there is none
  // Whether an index includes this column.
  bool IsIndexed(const Column& column) const;
};

// Reads the definition that starts on `page`. Errors 3049.
TableDefinition ReadTableDefinition(const PageFile& file, CodePage& codePage, std::uint32_t page,
                                    std::string name);

}  // namespace kxrestore::engine::jet_file
