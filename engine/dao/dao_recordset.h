// A recordset of the desktop engine. A snapshot is read in blocks, because a call for every cell is slow; a
// dynaset is read and written row by row.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "engine/dao/desktop_engine.h"
#include "engine/database.h"

namespace kxrestore::engine::dao {

// The cells of some rows as GetRows returns them: fields vary fastest.
class RowBlock {
 public:
  RowBlock() = default;
  ~RowBlock() { Clear(); }
  RowBlock(const RowBlock&) = delete;
  RowBlock& operator=(const RowBlock&) = delete;

  void Take(Variant rows, std::size_t fields);
  void Clear();
  bool HasRow() const { return m_row < m_count; }
  bool Advance() { return ++m_row < m_count; }
  const VARIANT& Cell(std::size_t field) const { return m_cells[m_row * m_fields + field]; }

 private:
  Variant m_rows;
  const VARIANT* m_cells = nullptr;
  std::size_t m_fields = 0, m_count = 0, m_row = 0;
};

class DaoRecordset final : public Recordset {
 public:
  DaoRecordset(std::shared_ptr<Session> session, std::string_view source, RecordsetType type);

  bool Eof() const override;
  void MoveNext() override;
  std::size_t FieldCount() const override;
  std::string_view FieldName(std::size_t index) const override;
  ValueView FieldValue(std::size_t index) const override;
  void Edit() override;
  void SetFieldValue(std::size_t index, Value value) override;
  void Update() override;
  void Close() override;

 private:
  // Its value is fetched on first use, once for each row.
  struct Column {
    Object field;
    std::string name;
    std::int64_t row = 0;
    Variant raw;
    std::string text;
    ValueView value;
  };

  void ReadColumns();
  void FetchBlock();
  void NeedOpen() const;
  void NeedRow() const;
  Column& NeedColumn(std::size_t index) const;

  std::shared_ptr<Session> m_session;
  Object m_recordset;
  RecordsetType m_type;
  mutable std::vector<Column> m_columns;
  RowBlock m_block;
  bool m_inBlocks;
  bool m_atEnd = false;
  bool m_closed = false;
  std::int64_t m_row = 1;  // changes with every row whose values may be cached
};

}  // namespace kxrestore::engine::dao
