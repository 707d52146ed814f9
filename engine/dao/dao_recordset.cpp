#include "engine/dao/dao_recordset.h"

#include "engine/dao/values.h"
#include "engine/error_numbers.h"

namespace kxrestore::engine::dao {
namespace {

namespace number = error_number;

constexpr std::int32_t kRowsInBlock = 500;

}  // namespace

void RowBlock::Take(Variant rows, std::size_t fields) {
  Clear();
  if (rows.Raw().vt != (VT_ARRAY | VT_VARIANT) || rows.Raw().parray == nullptr) return;
  SAFEARRAY* array = rows.Raw().parray;
  LONG low = 0, high = -1, lastField = -1, firstField = 0;
  void* cells = nullptr;
  if (SafeArrayGetDim(array) != 2 || FAILED(SafeArrayGetLBound(array, 1, &firstField)) ||
      FAILED(SafeArrayGetUBound(array, 1, &lastField)) || FAILED(SafeArrayGetLBound(array, 2, &low)) ||
      FAILED(SafeArrayGetUBound(array, 2, &high)) ||
      lastField - firstField + 1 != static_cast<LONG>(fields) || high < low ||
      FAILED(SafeArrayAccessData(array, &cells))) {
    return;
  }
  m_rows = std::move(rows);
  m_cells = static_cast<const VARIANT*>(cells);
  m_fields = fields;
  m_count = static_cast<std::size_t>(high - low + 1);
}

void RowBlock::Clear() {
  if (m_cells != nullptr) SafeArrayUnaccessData(m_rows.Raw().parray);
  m_cells = nullptr;
  m_rows = Variant();
  m_count = m_row = 0;
}

DaoRecordset::DaoRecordset(std::shared_ptr<Session> session, std::string_view source, RecordsetType type)
    : m_session(std::move(session)), m_type(type), m_inBlocks(type == RecordsetType::kSnapshot) {
  m_recordset = m_session->Dao().CallForObject(L"OpenRecordset", Variant(source),
                                               Variant(static_cast<std::int32_t>(type)));
  ReadColumns();
  m_atEnd = m_recordset.Get(L"EOF").Boolean();
  if (!m_atEnd && m_inBlocks) FetchBlock();
}

void DaoRecordset::ReadColumns() {
  const Object fields = m_recordset.GetObject(L"Fields");
  const auto count = static_cast<std::int32_t>(fields.Get(L"Count").Integer());
  m_columns.resize(static_cast<std::size_t>(count));
  for (std::int32_t i = 0; i < count; ++i) {
    Column& column = m_columns[static_cast<std::size_t>(i)];
    column.field = fields.Item(Variant(i));
    column.name = column.field.Get(L"Name").Text();
  }
}

// The engine ends a block before a row that it cannot read; reading that row separately gives the error.
void DaoRecordset::FetchBlock() {
  m_block.Take(m_recordset.Call(L"GetRows", Variant(kRowsInBlock)), m_columns.size());
  m_inBlocks = m_block.HasRow();
}

void DaoRecordset::NeedOpen() const {
  if (m_closed) Raise(number::kObjectInvalid, "Object invalid or no longer set: the recordset.");
}

void DaoRecordset::NeedRow() const {
  NeedOpen();
  if (m_atEnd) Raise(number::kNoCurrentRecord, "No current record.");
}

bool DaoRecordset::Eof() const {
  NeedOpen();
  return m_atEnd;
}

void DaoRecordset::MoveNext() {
  NeedRow();
  ++m_row;
  if (m_inBlocks && m_block.Advance()) return;
  if (m_inBlocks) {
    m_block.Clear();
  } else {
    m_recordset.Call(L"MoveNext");
  }
  m_atEnd = m_recordset.Get(L"EOF").Boolean();
  if (!m_atEnd && m_inBlocks) FetchBlock();
}

std::size_t DaoRecordset::FieldCount() const {
  NeedOpen();
  return m_columns.size();
}

DaoRecordset::Column& DaoRecordset::NeedColumn(std::size_t index) const {
  NeedOpen();
  if (index >= m_columns.size()) {
    Raise(number::kItemNotFound, "Item not found in this collection: field " + std::to_string(index) + ".");
  }
  return m_columns[index];
}

std::string_view DaoRecordset::FieldName(std::size_t index) const {
  return NeedColumn(index).name;
}

ValueView DaoRecordset::FieldValue(std::size_t index) const {
  Column& column = NeedColumn(index);
  NeedRow();
  if (column.row == m_row) return column.value;
  if (m_inBlocks) {
    column.value = ToValue(m_block.Cell(index), column.text);
  } else {
    column.raw = column.field.Get(L"Value");
    column.value = ToValue(column.raw.Raw(), column.text);
  }
  column.row = m_row;
  return column.value;
}

void DaoRecordset::Edit() {
  NeedRow();
  if (m_type == RecordsetType::kSnapshot) {
    Raise(number::kReadOnly, "Cannot update. Database or object is read-only: a snapshot.");
  }
  m_recordset.Call(L"Edit");
}

void DaoRecordset::SetFieldValue(std::size_t index, Value value) {
  NeedRow();
  Column& column = NeedColumn(index);
  column.field.Put(L"Value", FromValue(value));
  ++m_row;
}

void DaoRecordset::Update() {
  NeedRow();
  m_recordset.Call(L"Update");
  ++m_row;
  m_session->Engine().HasWritten();
}

void DaoRecordset::Close() {
  if (m_closed) return;
  m_closed = true;
  m_block.Clear();
  m_columns.clear();
  const Object recordset = std::exchange(m_recordset, Object());
  const std::shared_ptr<Session> session = std::move(m_session);
  recordset.Call(L"Close");
}

}  // namespace kxrestore::engine::dao
