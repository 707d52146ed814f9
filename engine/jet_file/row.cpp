#include "engine/jet_file/row.h"

namespace kxrestore::engine::jet_file {

Row::Row(const Layout& layout, const TableDefinition& table, Bytes bytes)
    : m_bytes(bytes), m_jet3(layout.jet3) {
  const std::size_t wide = m_jet3 ? 1 : 2;  // bytes of a number
  m_columns = m_jet3 ? bytes.U8(0) : bytes.U16(0);
  const std::size_t maskSize = (m_columns + 7) / 8;
  if (maskSize + wide > bytes.Size()) bytes.RaiseDamaged("a row has more columns than room");
  m_mask = bytes.Size() - maskSize;
  if (table.variableColumns == 0) return;
  if (m_mask < 2 * wide) bytes.RaiseDamaged("a row has no room for its columns");
  m_variable = m_jet3 ? bytes.U8(m_mask - 1) : bytes.U16(m_mask - 2);
  const std::size_t jumps = m_jet3 ? (bytes.Size() - 1) / 256 : 0;
  // One offset more than there are columns: the end.
  if (wide + (m_variable + 2) * wide + jumps > m_mask) {
    bytes.RaiseDamaged("a row has more columns than room");
  }
  m_offsets = m_mask - 2 * wide - jumps;
  m_end = m_offsets - m_variable * wide;
  // The last jump is a filler where no value can reach that far.
  m_jumps = m_end / 256 < jumps ? jumps - 1 : jumps;
}

std::size_t Row::VariableOffset(std::size_t index) const {
  if (!m_jet3) return m_bytes.U16(m_offsets - 2 * index);
  // Long rows need more than one byte: each jump names the column from which another 256 is added.
  std::size_t offset = m_bytes.U8(m_offsets - index);
  for (std::size_t i = 0; i < m_jumps; ++i) {
    if (m_bytes.U8(m_mask - 2 - i) <= index) offset += 256;
  }
  return offset;
}

std::optional<Bytes> Row::Stored(const Column& column) const {
  if (!Bit(column)) return std::nullopt;
  const std::size_t wide = m_jet3 ? 1 : 2;
  if (column.fixed) {
    const std::size_t start = wide + column.fixedOffset;
    if (start + column.length > m_mask) m_bytes.RaiseDamaged("a row lacks a fixed column");
    return m_bytes.Piece(start, column.length);
  }
  if (column.variableIndex >= m_variable) return std::nullopt;
  const std::size_t start = VariableOffset(column.variableIndex);
  const std::size_t end = VariableOffset(column.variableIndex + std::size_t{1});
  if (start < wide || start > end || end > m_end) m_bytes.RaiseDamaged("a row's columns lie outside of it");
  return m_bytes.Piece(start, end - start);
}

}  // namespace kxrestore::engine::jet_file
