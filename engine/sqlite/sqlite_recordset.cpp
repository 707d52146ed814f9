#include "engine/sqlite/sqlite_recordset.h"

#include <algorithm>

#include "base/error.h"
#include "engine/error_numbers.h"
#include "engine/sqlite/planner.h"

namespace kxrestore::engine::sqlite {
namespace {

namespace number = kxrestore::engine::error_number;

[[noreturn]] void Raise(int errorNumber, std::string description) {
  throw Error(errorNumber, std::move(description), "Engine");
}

void Bind(sqlite3_stmt* statement, int index, const Value& value) {
  struct Visitor {
    sqlite3_stmt* statement;
    int index;
    void operator()(std::monostate) const { sqlite3_bind_null(statement, index); }
    void operator()(bool b) const { sqlite3_bind_int64(statement, index, b ? 1 : 0); }
    void operator()(std::int64_t integer) const { sqlite3_bind_int64(statement, index, integer); }
    void operator()(double real) const { sqlite3_bind_double(statement, index, real); }
    void operator()(const std::string& text) const {
      sqlite3_bind_text64(statement, index, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    }
    void operator()(const DateTime& date) const { (*this)(ToText(date)); }
  };
  std::visit(Visitor{statement, index}, value);
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

ValueView OfKind(ColumnKind kind, const ValueView& value) {
  if (kind == ColumnKind::kBoolean) {
    if (const auto* integer = std::get_if<std::int64_t>(&value)) return *integer != 0;
    if (const auto* real = std::get_if<double>(&value)) return *real != 0;
  } else if (kind == ColumnKind::kDate) {
    if (const auto date = ToDateTime(value)) return *date;
  }
  return value;
}

}  // namespace

SqliteRecordset::SqliteRecordset(std::shared_ptr<Session> session, std::string_view source,
                                 RecordsetType type, bool readOnly)
    : m_session(std::move(session)), m_type(type), m_readOnly(readOnly) {
  int code = Open(source);
  if (code == SQLITE_ROW && sqlite3_column_count(m_statement.get()) != static_cast<int>(m_plan->allColumns)) {
    m_session->ForgetPlans();  // somebody else has changed the schema meanwhile
    code = Open(source);
  }
  if (code == SQLITE_ROW) {
    m_session->AddStreaming(*this);
    return;
  }
  const ResetGuard guard(m_statement.get());
  if (code != SQLITE_DONE) m_session->Raise(code, Doing::kReading, source);
  m_state = State::kAtEnd;
  Session::Release(*m_plan, std::move(m_statement));
}

int SqliteRecordset::Open(std::string_view source) {
  m_plan = m_session->FindPlan(
      source, m_type == RecordsetType::kDynaset ? Session::Use::kDynaset : Session::Use::kSnapshot);
  m_statement = m_session->Acquire(*m_plan);
  return m_session->StepReading(m_statement.get());
}

SqliteRecordset::~SqliteRecordset() {
  LetStatementGo();
}

void SqliteRecordset::LetStatementGo() {
  if (!m_statement) return;
  m_session->RemoveStreaming(*this);
  Session::Release(*m_plan, std::move(m_statement));
}

void SqliteRecordset::Close() {
  LetStatementGo();
  m_stored.reset();
  m_state = State::kClosed;
}

void SqliteRecordset::NeedOpen() const {
  if (m_state == State::kClosed)
    Raise(number::kObjectInvalid, "Object invalid or no longer set: the recordset.");
}

void SqliteRecordset::NeedRow() const {
  NeedOpen();
  if (m_state == State::kAtEnd) Raise(number::kNoCurrentRecord, "No current record.");
}

bool SqliteRecordset::Eof() const {
  NeedOpen();
  return m_state == State::kAtEnd;
}

void SqliteRecordset::MoveNext() {
  NeedRow();
  m_editing = false;
  if (!m_pending.empty()) m_pending.clear();
  if (!m_written.empty()) m_written.clear();
  if (m_state == State::kStreaming) {
    Step();
  } else if (!m_stored->Next(m_row, m_plan->allColumns)) {
    m_stored.reset();
    m_state = State::kAtEnd;
  }
}

void SqliteRecordset::Step() {
  const int code = m_session->StepReading(m_statement.get());
  if (code == SQLITE_ROW) return;
  m_state = State::kAtEnd;
  if (code == SQLITE_DONE) {
    LetStatementGo();
    return;
  }
  try {
    m_session->Raise(code, Doing::kReading, m_plan->sql);
  } catch (...) {
    LetStatementGo();
    throw;
  }
}

void SqliteRecordset::Detach() {
  if (m_state != State::kStreaming) return;
  auto stored = std::make_unique<RowStore>();
  int code = SQLITE_ROW;
  for (; code == SQLITE_ROW; code = sqlite3_step(m_statement.get())) {
    stored->BeginRow();
    for (std::size_t i = 0; i < m_plan->allColumns; ++i) stored->Append(RawValue(i));
  }
  if (code != SQLITE_DONE) m_session->Raise(code, Doing::kReading, m_plan->sql);
  stored->Next(m_row, m_plan->allColumns);
  m_stored = std::move(stored);
  m_state = State::kStored;
  LetStatementGo();
}

std::size_t SqliteRecordset::FieldCount() const {
  NeedOpen();
  return m_plan->columns.size();
}

std::string_view SqliteRecordset::FieldName(std::size_t index) const {
  NeedOpen();
  if (index >= m_plan->columns.size()) {
    Raise(number::kItemNotFound, "Item not found in this collection: field " + std::to_string(index) + ".");
  }
  return m_plan->columns[index].name;
}

ValueView SqliteRecordset::RawValue(std::size_t index) const {
  if (m_state == State::kStored) return m_row[index];
  sqlite3_stmt* statement = m_statement.get();
  const int column = static_cast<int>(index);
  switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
      return static_cast<std::int64_t>(sqlite3_column_int64(statement, column));
    case SQLITE_FLOAT:
      return sqlite3_column_double(statement, column);
    case SQLITE_TEXT: {
      const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
      if (text == nullptr) return std::string_view();
      return std::string_view(text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column)));
    }
    case SQLITE_BLOB: {
      const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement, column));
      if (bytes == nullptr) return std::string_view();
      return std::string_view(bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement, column)));
    }
    default:
      return std::monostate();
  }
}

const Value* SqliteRecordset::Changed(std::size_t index) const {
  for (const auto* changes : {&m_pending, &m_written}) {
    for (const auto& [column, value] : *changes) {
      if (column == index) return &value;
    }
  }
  return nullptr;
}

ValueView SqliteRecordset::FieldValue(std::size_t index) const {
  if (m_state > State::kStored) NeedRow();
  if (index >= m_plan->columns.size()) FieldName(index);
  if (!m_pending.empty() || !m_written.empty()) {
    if (const Value* changed = Changed(index)) return AsView(*changed);
  }
  const ColumnKind kind = m_plan->columns[index].kind;
  return kind == ColumnKind::kPlain ? RawValue(index) : OfKind(kind, RawValue(index));
}

void SqliteRecordset::Edit() {
  NeedRow();
  if (IsSnapshot() || m_readOnly || m_session->IsReadOnly() || m_plan->tables.empty()) {
    Raise(number::kReadOnly, "Cannot update. Database or object is read-only: '" + m_session->File() + "'.");
  }
  m_editing = true;
  m_pending.clear();
}

void SqliteRecordset::SetFieldValue(std::size_t index, Value value) {
  NeedRow();
  const std::string_view name = FieldName(index);
  if (!m_editing) Raise(number::kUpdateWithoutEdit, "Update or CancelUpdate without AddNew or Edit.");
  if (m_plan->columns[index].baseName.empty()) {
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

void SqliteRecordset::UpdateTable(std::size_t table) {
  std::vector<std::size_t> columns;
  for (const auto& [column, value] : m_pending) {
    if (m_plan->columns[column].table == table) columns.push_back(column);
  }
  if (columns.empty()) return;
  const ValueView row = RawValue(m_plan->tables[table].rowColumn);
  const auto* rowNumber = std::get_if<std::int64_t>(&row);
  if (rowNumber == nullptr) {
    Raise(number::kReadOnly, "Cannot update: the row has no record in '" + m_plan->tables[table].name + "'.");
  }
  RowUpdate& update = FindRowUpdate(*m_session, *m_plan, columns);
  sqlite3_stmt* statement = update.statement.get();
  sqlite3_bind_int64(statement, 1, *rowNumber);
  int parameter = 2;
  for (const auto& [column, value] : m_pending) {
    if (m_plan->columns[column].table == table) Bind(statement, parameter++, value);
  }
  m_session->RunWrite(statement, update.disturbs, m_plan->tables[table].name);
  if (sqlite3_changes(m_session->Connection()) == 0) {
    Raise(number::kRecordDeleted, "Record is deleted: '" + m_plan->tables[table].name + "'.");
  }
}

void SqliteRecordset::Update() {
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

}  // namespace kxrestore::engine::sqlite
