// What the recordsets of this program's own back ends share: rows that stream from a statement until they are
// taken into memory, and the changes of the current row until they are written.
#pragma once

#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/database.h"
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

  // Takes the remaining rows into memory, where nothing that is written beside them changes them. When that
  // fails on the way, or the user stops it, the rows up to there remain, and moving behind them raises why.
  // False when the user has stopped it.
  bool Detach();
  bool IsSnapshot() const { return m_type == RecordsetType::kSnapshot; }

 protected:
  using Changes = std::vector<std::pair<std::size_t, Value>>;  // by column

  StreamedRecordset(RecordsetType type, bool readOnly) : m_type(type), m_readOnly(readOnly) {}

  // The statement stands on its first row, or had none. `hidden`: columns behind those that are shown.
  void Begin(bool hasRow, std::size_t columns, std::size_t hidden);
  // A value of the current row, also of a column behind those that are shown.
  ValueView RowValue(std::size_t index) const { return m_stored ? m_row[index] : Streamed(index); }

  // Moves the statement to its next row; false at the end. `mayStop`: the user may end it.
  virtual bool Fetch(bool mayStop) = 0;
  virtual void LetStatementGo() = 0;  // there is nothing more to fetch
  virtual ValueView Streamed(std::size_t index) const = 0;
  virtual std::string_view ColumnName(std::size_t index) const = 0;

  virtual const std::string& Place() const = 0;  // the file or the server
  virtual bool CanChangeRows() const = 0;
  virtual bool CanChange(std::size_t index) const = 0;
  virtual void Write(const Changes& changes) = 0;

 private:
  enum class State { kOnRow, kAtEnd, kClosed };

  void NeedOpen() const;
  void NeedRow() const;
  const Value* Changed(std::size_t index) const;

  RecordsetType m_type;
  bool m_readOnly;
  bool m_editing = false;
  State m_state = State::kAtEnd;
  std::size_t m_columns = 0, m_allColumns = 0;
  std::unique_ptr<RowStore> m_stored;  // once detached
  std::exception_ptr m_cutOff;         // what has kept the rest of the rows out of it
  std::vector<ValueView> m_row;        // of a stored row
  Changes m_pending;                   // set since Edit
  Changes m_written;                   // in the current row
};

// A session's recordsets that still fetch rows. Before anything that could take those away or change them,
// they take the rest into memory.
class StreamingList {
 public:
  bool IsEmpty() const { return m_rows.empty(); }
  void Add(StreamedRecordset& rows) { m_rows.push_back(&rows); }
  void Remove(StreamedRecordset& rows) { std::erase(m_rows, &rows); }
  // False when the user has stopped it; see StreamedRecordset::Detach.
  bool Detach(bool dynasetsToo = true);

 private:
  std::vector<StreamedRecordset*> m_rows;
};

}  // namespace kxrestore::engine
