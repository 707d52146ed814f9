// A stored row: which columns have a value, and where. Values are decoded on demand.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "engine/jet_file/table_definition.h"

namespace kxrestore::engine::jet_file {

class Row {
 public:
  Row() = default;
  // Error 3049 when the row's own numbers contradict its size.
  Row(const Layout& layout, const TableDefinition& table, Bytes bytes);

  const Bytes& Content() const { return m_bytes; }

  // A yes/no column's value is this bit; for any other column it means that there is a value. A row stored
  // before the column was added has no such bit, which counts as false.
  bool Bit(const Column& column) const {
    return HasBit(column) && (m_bytes.Data()[BitPlace(column)] >> (column.number & 7) & 1) != 0;
  }
  bool HasBit(const Column& column) const { return column.number < m_columns; }
  // The offset of the bit's byte in the row.
  std::size_t BitPlace(const Column& column) const { return m_mask + (column.number >> 3); }

  // The stored bytes; nothing for Null.
  std::optional<Bytes> Stored(const Column& column) const;

 private:
  std::size_t VariableOffset(std::size_t index) const;

  Bytes m_bytes;
  bool m_jet3 = false;
  std::size_t m_columns = 0;   // known when the row was stored
  std::size_t m_variable = 0;  // of them
  std::size_t m_mask = 0;      // where the null mask begins
  std::size_t m_offsets = 0;   // where the offset of variable column 0 is stored
  std::size_t m_end = 0;       // of the values
  std::size_t m_jumps = 0;     // of a long row of 1997
};

}  // namespace kxrestore::engine::jet_file
