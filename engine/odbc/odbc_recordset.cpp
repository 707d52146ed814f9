#include "engine/odbc/odbc_recordset.h"

#include <algorithm>

#include "base/error.h"
#include "engine/error_numbers.h"
#include "engine/odbc/odbc_planner.h"

namespace kxrestore::engine::odbc {
namespace {

namespace number = kxrestore::engine::error_number;
using jet_sql::ValueKind;

[[noreturn]] void Raise(int errorNumber, std::string description) {
  throw Error(errorNumber, std::move(description), "Engine");
}

ValueView AsView(const Value& value) {
  return std::visit(
      [](const auto& held) -> ValueView {
        if constexpr (std::is_same_v<std::decay_t<decltype(held)>, std::string>) {
          return std::string_view(held);
        } else {
          return held;
        }
      },
      value);
}

Value AsOwned(const ValueView& value) {
  return std::visit(
      [](const auto& held) -> Value {
        if constexpr (std::is_same_v<std::decay_t<decltype(held)>, std::string_view>) {
          return std::string(held);
        } else {
          return held;
        }
      },
      value);
}

// A value as the column's kind, where the server would not take it otherwise.
Value ForColumn(const Value& value, ValueKind kind) {
  const ValueView view = AsView(value);
  if (IsNull(view)) return value;
  switch (kind) {
    case ValueKind::kBoolean:
      return ToBoolean(view);
    case ValueKind::kNumber:
      if (std::holds_alternative<bool>(value)) return std::int64_t{std::get<bool>(value) ? 1 : 0};
      return value;
    case ValueKind::kText:
      return ToText(view);
    case ValueKind::kDate:
      if (const auto date = ToDateTime(view)) return *date;
      return value;
    case ValueKind::kUnknown:
      break;
  }
  return value;
}

}  // namespace

OdbcRecordset::OdbcRecordset(std::shared_ptr<Session> session, std::string_view source, RecordsetType type,
                             bool readOnly)
    : m_session(std::move(session)), m_type(type), m_readOnly(readOnly) {
  Open(source);
  const std::vector<ColumnType>& columns = m_rows->Columns();
  m_allColumns = columns.size();
  for (std::size_t i = 0; i + m_plan->hidden < columns.size(); ++i) m_names.push_back(columns[i].name);
  const bool hasRow = m_rows->Next();
  m_plan->isShort = m_rows->InOneBlock();
  if (hasRow) {
    m_session->AddStreaming(*this);
    return;
  }
  m_state = State::kAtEnd;
  Session::Release(*m_plan, std::move(m_statement));
}

// Others may have changed tables and queries since the plan was made: it is made anew once.
void OdbcRecordset::Open(std::string_view source) {
  if (TryOpen(source)) return;
  m_session->ForgetPlans();
  m_statement.reset();
  if (!TryOpen(source)) m_session->Raise(SQL_HANDLE_STMT, m_statement->Get(), source);
}

bool OdbcRecordset::TryOpen(std::string_view source) {
  m_plan = m_session->FindPlan(
      source, m_type == RecordsetType::kDynaset ? Session::Use::kDynaset : Session::Use::kSnapshot);
  m_statement = m_session->Acquire(*m_plan);
  m_session->FetchPiecewise(!m_plan->isShort);
  if (!m_session->RunRead(*m_statement,
                          ParameterValues(*m_plan, m_session->Literals(), m_session->Dialect()))) {
    return false;
  }
  m_rows = &m_statement->Rows();
  return !m_plan->columnsKnown || m_rows->Columns().size() == m_plan->columns.size() + m_plan->hidden;
}

OdbcRecordset::~OdbcRecordset() {
  LetStatementGo();
}

void OdbcRecordset::LetStatementGo() {
  if (!m_statement) return;
  m_session->RemoveStreaming(*this);
  Session::Release(*m_plan, std::move(m_statement));
}

void OdbcRecordset::Close() {
  LetStatementGo();
  m_stored.reset();
  m_state = State::kClosed;
}

void OdbcRecordset::NeedOpen() const {
  if (m_state == State::kClosed)
    Raise(number::kObjectInvalid, "Object invalid or no longer set: the recordset.");
}

void OdbcRecordset::NeedRow() const {
  NeedOpen();
  if (m_state == State::kAtEnd) Raise(number::kNoCurrentRecord, "No current record.");
}

bool OdbcRecordset::Eof() const {
  NeedOpen();
  return m_state == State::kAtEnd;
}

void OdbcRecordset::MoveNext() {
  NeedRow();
  m_editing = false;
  m_pending.clear();
  m_written.clear();
  if (m_state == State::kStored) {
    if (m_stored->Next(m_row, m_allColumns)) return;
    m_stored.reset();
    m_state = State::kAtEnd;
    return;
  }
  m_state = State::kAtEnd;  // also when fetching fails
  if (m_rows->Next()) {
    m_state = State::kStreaming;
  } else {
    LetStatementGo();
  }
}

void OdbcRecordset::Detach() {
  if (m_state != State::kStreaming) return;
  auto stored = std::make_unique<RowStore>();
  do {
    stored->BeginRow();
    for (std::size_t i = 0; i < m_allColumns; ++i) stored->Append(m_rows->Value(i));
  } while (m_rows->Next());
  stored->Next(m_row, m_allColumns);
  m_stored = std::move(stored);
  m_state = State::kStored;
  LetStatementGo();
}

std::size_t OdbcRecordset::FieldCount() const {
  NeedOpen();
  return m_names.size();
}

std::string_view OdbcRecordset::FieldName(std::size_t index) const {
  NeedOpen();
  if (index >= m_names.size()) {
    Raise(number::kItemNotFound, "Item not found in this collection: field " + std::to_string(index) + ".");
  }
  return m_names[index];
}

ValueView OdbcRecordset::RawValue(std::size_t index) const {
  return m_state == State::kStored ? m_row[index] : m_rows->Value(index);
}

const Value* OdbcRecordset::Changed(std::size_t index) const {
  for (const auto* changes : {&m_pending, &m_written}) {
    for (const auto& [column, value] : *changes) {
      if (column == index) return &value;
    }
  }
  return nullptr;
}

ValueView OdbcRecordset::FieldValue(std::size_t index) const {
  NeedRow();
  if (index >= m_names.size()) FieldName(index);
  if (!m_pending.empty() || !m_written.empty()) {
    if (const Value* changed = Changed(index)) return AsView(*changed);
  }
  return RawValue(index);
}

bool OdbcRecordset::CanChange(std::size_t index) const {
  if (index >= m_plan->columns.size()) return false;
  const jet_sql::ResultColumn& column = m_plan->columns[index];
  return column.table < m_plan->tables.size() && !m_plan->tables[column.table].keys.empty();
}

void OdbcRecordset::Edit() {
  NeedRow();
  const auto& tables = m_plan->tables;
  const bool changeable =
      std::any_of(tables.begin(), tables.end(), [](const PlanTable& table) { return !table.keys.empty(); });
  if (m_type == RecordsetType::kSnapshot || m_readOnly || !changeable) {
    Raise(number::kReadOnly,
          "Cannot update. Database or object is read-only: '" + m_session->Server() + "'.");
  }
  m_editing = true;
  m_pending.clear();
}

void OdbcRecordset::SetFieldValue(std::size_t index, Value value) {
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

void OdbcRecordset::UpdateTable(std::size_t table) {
  std::vector<std::size_t> columns;
  std::vector<Value> values;
  for (const auto& [column, value] : m_pending) {
    const jet_sql::ResultColumn& changed = m_plan->columns[column];
    if (changed.table != table) continue;
    columns.push_back(column);
    values.push_back(ForColumn(value, changed.kind));
  }
  if (columns.empty()) return;
  const PlanTable& changed = m_plan->tables[table];
  for (const std::size_t key : changed.keyColumns) {
    const ValueView value = RawValue(m_names.size() + key);
    if (IsNull(value)) {
      Raise(number::kReadOnly, "Cannot update: the row has no record in '" + changed.name + "'.");
    }
    values.push_back(AsOwned(value));
  }
  const RowUpdate& update = FindRowUpdate(*m_session, *m_plan, columns);
  if (m_session->RunWrite(*update.statement, values) == 0) {
    Raise(number::kRecordDeleted, "Record is deleted: '" + changed.name + "'.");
  }
}

void OdbcRecordset::Update() {
  NeedRow();
  if (!m_editing) Raise(number::kUpdateWithoutEdit, "Update or CancelUpdate without AddNew or Edit.");
  for (std::size_t table = 0; table < m_plan->tables.size(); ++table) UpdateTable(table);
  for (auto& change : m_pending) {
    std::erase_if(m_written, [&change](const auto& written) { return written.first == change.first; });
    m_written.push_back(std::move(change));
  }
  m_pending.clear();
  m_editing = false;
}

}  // namespace kxrestore::engine::odbc
