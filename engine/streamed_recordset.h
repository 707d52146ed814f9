// Base of the recordsets of this program's own back ends: rows that stream from a statement until they are
// buffered, and pending changes of the current row.
#pragma once

#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/database.h"
#include "engine/plan.h"
#include "engine/row_store.h"

namespace kxrestore::engine {

class StreamedRecordset : public Recordset {
 public:
  bool Eof() const final;
  void MoveNext() final;
  std::size_t FieldCount() const final;
  std::string_view FieldName(std::size_t index) const final;
  ValueView FieldValue(std::size_t index) const final;
  void Edit() final;
  void SetFieldValue(std::size_t index, Value value) final;
  void Update() final;
  void Close() final;

  // Buffers the remaining rows, so that later writes do not change them. If that fails or the user stops it,
  // the rows read so far remain, and moving past them raises the error. False if the user has stopped it.
  bool Detach();
  bool IsSnapshot() const { return m_type == RecordsetType::kSnapshot; }

 protected:
  StreamedRecordset(RecordsetType type, bool readOnly) : m_type(type), m_readOnly(readOnly) {}

  // The statement is at its first row, or has none. `hidden`: the number of columns after the visible ones.
  void Begin(bool hasRow, std::size_t columns, std::size_t hidden);

  // Moves the statement to its next row; false at the end.
  virtual bool Fetch() = 0;
  virtual void ReleaseStatement() = 0;  // all rows are fetched
  virtual ValueView Streamed(std::size_t index) const = 0;
  virtual std::string_view ColumnName(std::size_t index) const = 0;

  virtual const std::string& Place() const = 0;  // the file or the server
  virtual const CachedPlan& StatementPlan() const = 0;
  // Executes the update of these columns, see RowUpdateText; returns the number of rows changed. May convert
  // the values in place.
  virtual std::int64_t UpdateRow(const std::vector<std::size_t>& columns, std::vector<Value>& values) = 0;

 private:
  enum class State { kOnRow, kAtEnd, kClosed };
  using Changes = std::vector<std::pair<std::size_t, Value>>;  // by column

  // A value of the current row, hidden columns included.
  ValueView RowValue(std::size_t index) const { return m_stored ? m_row[index] : Streamed(index); }
  void NeedOpen() const;
  void NeedRow() const;
  const Value* Changed(std::size_t index) const;
  bool CanChange(std::size_t index) const;
  void Write(std::size_t table);

  RecordsetType m_type;
  bool m_readOnly;
  bool m_editing = false;
  State m_state = State::kAtEnd;
  std::size_t m_columns = 0, m_allColumns = 0;
  std::unique_ptr<RowStore> m_stored;  // once detached
  std::exception_ptr m_cutOff;         // why the remaining rows could not be buffered
  std::vector<ValueView> m_row;        // of a stored row
  Changes m_pending;                   // set since Edit
  Changes m_written;                   // in the current row
  // Arguments of UpdateRow, kept for the next row.
  std::vector<std::size_t> m_updatedColumns;
  std::vector<Value> m_updateValues;
};

// A session's recordsets that still stream rows. They buffer the rest before anything that could change or
// end the stream.
class StreamingList {
 public:
  bool IsEmpty() const { return m_rows.empty(); }
  void Add(StreamedRecordset& rows) { m_rows.push_back(&rows); }
  void Remove(StreamedRecordset& rows) { std::erase(m_rows, &rows); }
  // False if the user has stopped it; see StreamedRecordset::Detach.
  bool Detach(bool dynasetsToo = true);

 private:
  std::vector<StreamedRecordset*> m_rows;
};

}  // namespace kxrestore::engine
