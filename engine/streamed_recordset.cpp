#include "engine/streamed_recordset.h"

#include <algorithm>
#include <utility>

#include "base/error.h"
#include "engine/error_numbers.h"

namespace kxrestore::engine {

namespace number = error_number;

void StreamedRecordset::Begin(bool hasRow, std::size_t columns, std::size_t hidden) {
  m_columns = columns;
  m_allColumns = columns + hidden;
  if (hasRow) {
    m_state = State::kOnRow;
  } else {
    ReleaseStatement();
  }
}

void StreamedRecordset::Close() {
  ReleaseStatement();
  m_stored.reset();
  m_state = State::kClosed;
}

void StreamedRecordset::NeedOpen() const {
  if (m_state == State::kClosed) {
    Raise(number::kObjectInvalid, "Object invalid or no longer set: the recordset.");
  }
}

void StreamedRecordset::NeedRow() const {
  NeedOpen();
  if (m_state == State::kAtEnd) Raise(number::kNoCurrentRecord, "No current record.");
}

bool StreamedRecordset::Eof() const {
  NeedOpen();
  return m_state == State::kAtEnd;
}

void StreamedRecordset::MoveNext() {
  NeedRow();
  m_editing = false;
  if (!m_pending.empty()) m_pending.clear();
  if (!m_written.empty()) m_written.clear();
  if (m_stored) {
    if (m_stored->Next(m_row, m_allColumns)) return;
    m_stored.reset();
    m_state = State::kAtEnd;
    if (m_cutOff) std::rethrow_exception(std::exchange(m_cutOff, nullptr));
    return;
  }
  m_state = State::kAtEnd;  // also when fetching fails
  bool hasRow = false;
  try {
    hasRow = Fetch();
  } catch (...) {
    ReleaseStatement();
    throw;
  }
  if (hasRow) {
    m_state = State::kOnRow;
  } else {
    ReleaseStatement();
  }
}

bool StreamedRecordset::Detach() {
  if (m_state != State::kOnRow || m_stored) return true;
  m_row.resize(m_allColumns);
  auto stored = std::make_unique<RowStore>();
  const auto store = [&] {
    stored->BeginRow();
    try {
      for (std::size_t i = 0; i < m_allColumns; ++i) stored->Append(Streamed(i));
    } catch (...) {
      stored->DropRow();
      throw;
    }
  };
  store();  // a failure of this row leaves everything as it is
  bool stopped = false;
  try {
    while (Fetch()) store();
  } catch (const Error& error) {
    stopped = error.Number() == number::kCanceled;
    m_cutOff = std::current_exception();
  } catch (...) {
    m_cutOff = std::current_exception();
  }
  stored->Next(m_row, m_allColumns);
  m_stored = std::move(stored);
  ReleaseStatement();
  return !stopped;
}

std::size_t StreamedRecordset::FieldCount() const {
  NeedOpen();
  return m_columns;
}

std::string_view StreamedRecordset::FieldName(std::size_t index) const {
  NeedOpen();
  if (index >= m_columns) {
    Raise(number::kItemNotFound, "Item not found in this collection: field " + std::to_string(index) + ".");
  }
  return ColumnName(index);
}

const Value* StreamedRecordset::Changed(std::size_t index) const {
  for (const auto* changes : {&m_pending, &m_written}) {
    for (const auto& [column, value] : *changes) {
      if (column == index) return &value;
    }
  }
  return nullptr;
}

ValueView StreamedRecordset::FieldValue(std::size_t index) const {
  if (m_state != State::kOnRow) NeedRow();
  if (index >= m_columns) FieldName(index);
  if (!m_pending.empty() || !m_written.empty()) {
    if (const Value* changed = Changed(index)) return ViewOf(*changed);
  }
  return RowValue(index);
}

bool StreamedRecordset::CanChange(std::size_t index) const {
  const CachedPlan& plan = StatementPlan();
  if (index >= plan.columns.size()) return false;
  const std::size_t table = plan.columns[index].table;
  return table < plan.tables.size() && !plan.tables[table].keys.empty();
}

void StreamedRecordset::Edit() {
  NeedRow();
  const std::vector<PlanTable>& tables = StatementPlan().tables;
  const auto hasKey = [](const PlanTable& table) { return !table.keys.empty(); };
  if (m_readOnly || std::none_of(tables.begin(), tables.end(), hasKey)) {
    Raise(number::kReadOnly, "Cannot update. Database or object is read-only: '" + Place() + "'.");
  }
  m_editing = true;
  m_pending.clear();
}

void StreamedRecordset::SetFieldValue(std::size_t index, Value value) {
  NeedRow();
  const std::string_view name = FieldName(index);
  if (!m_editing) Raise(number::kUpdateWithoutEdit, "Update or CancelUpdate without AddNew or Edit.");
  if (!CanChange(index)) {
    Raise(number::kReadOnly, "Cannot update '" + std::string(name) + "'; field not updatable.");
  }
  for (auto& [column, pending] : m_pending) {
    if (column == index) {
      pending = std::move(value);
      return;
    }
  }
  m_pending.emplace_back(index, std::move(value));
}

void StreamedRecordset::Update() {
  NeedRow();
  if (!m_editing) Raise(number::kUpdateWithoutEdit, "Update or CancelUpdate without AddNew or Edit.");
  m_written.reserve(m_written.size() + m_pending.size());  // nothing may fail after the write
  for (std::size_t table = 0; table < StatementPlan().tables.size(); ++table) Write(table);
  for (auto& change : m_pending) {
    std::erase_if(m_written, [&change](const auto& written) { return written.first == change.first; });
    m_written.push_back(std::move(change));
  }
  m_pending.clear();
  m_editing = false;
}

void StreamedRecordset::Write(std::size_t table) {
  const CachedPlan& plan = StatementPlan();
  const PlanTable& changed = plan.tables[table];
  m_updatedColumns.clear();
  m_updateValues.clear();
  for (const auto& [column, value] : m_pending) {
    if (plan.columns[column].table != table) continue;
    m_updatedColumns.push_back(column);
    m_updateValues.push_back(value);
  }
  if (m_updatedColumns.empty()) return;
  for (const std::size_t key : changed.keyColumns) {
    const ValueView value = RowValue(m_columns + key);
    if (IsNull(value)) {
      Raise(number::kReadOnly, "Cannot update: the row has no record in '" + changed.name + "'.");
    }
    m_updateValues.push_back(OwnedOf(value));
  }
  if (UpdateRow(m_updatedColumns, m_updateValues) == 0) {
    Raise(number::kRecordDeleted, "Record is deleted: '" + changed.name + "'.");
  }
}

bool StreamingList::Detach(bool dynasetsToo) {
  if (m_rows.empty()) return true;
  const std::vector<StreamedRecordset*> streaming = m_rows;  // detaching removes a recordset from the list
  for (StreamedRecordset* rows : streaming) {
    if ((dynasetsToo || rows->IsSnapshot()) && !rows->Detach()) return false;
  }
  return true;
}

}  // namespace kxrestore::engine
