#include "engine/sqlite/sqlite_recordset.h"

#include <algorithm>

#include "engine/error_numbers.h"
#include "engine/sqlite/planner.h"

namespace kxrestore::engine::sqlite {
namespace {

namespace number = error_number;

ValueView OfKind(ColumnKind kind, const ValueView& value) {
  if (kind == ColumnKind::kBoolean) {
    if (const auto* integer = std::get_if<std::int64_t>(&value)) return *integer != 0;
    if (const auto* real = std::get_if<double>(&value)) return *real != 0;
  } else if (kind == ColumnKind::kDate) {
    if (const auto date = ToDateTime(value)) return *date;
  }
  return value;
}

ValueView RawValue(sqlite3_stmt* statement, int column) {
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

}  // namespace

SqliteRecordset::SqliteRecordset(std::shared_ptr<Session> session, const Sql& sql, RecordsetType type,
                                 const ColumnNames& read, bool readOnly)
    : StreamedRecordset(type, readOnly), m_session(std::move(session)) {
  int code = Open(sql, read);
  if (code == SQLITE_ROW && sqlite3_column_count(m_statement.get()) != static_cast<int>(m_plan->allColumns)) {
    m_session->ForgetPlans();  // somebody else has changed the schema meanwhile
    code = Open(sql, read);
  }
  if (code == SQLITE_ROW) {
    m_session->Streaming().Add(*this);
  } else if (code != SQLITE_DONE) {
    const ResetGuard guard(m_statement.get());
    m_session->Raise(code, Doing::kReading, sql.Printed());
  }
  Begin(code == SQLITE_ROW, m_plan->columns.size(), m_plan->allColumns - m_plan->columns.size());
}

int SqliteRecordset::Open(const Sql& sql, const ColumnNames& read) {
  m_plan = m_session->FindPlan(sql, IsSnapshot() ? Session::Use::kSnapshot : Session::Use::kDynaset, read);
  m_statement = m_session->Acquire(*m_plan);
  return m_session->StepReading(m_statement.get());
}

SqliteRecordset::~SqliteRecordset() {
  LetStatementGo();
}

void SqliteRecordset::LetStatementGo() {
  if (!m_statement) return;
  m_session->Streaming().Remove(*this);
  Session::Release(*m_plan, std::move(m_statement));
}

bool SqliteRecordset::Fetch(bool mayStop) {
  sqlite3_stmt* const statement = m_statement.get();
  const int code = mayStop ? m_session->StepReading(statement) : sqlite3_step(statement);
  if (code == SQLITE_ROW) return true;
  if (code != SQLITE_DONE) m_session->Raise(code, Doing::kReading, m_plan->sql);
  return false;
}

ValueView SqliteRecordset::Streamed(std::size_t index) const {
  sqlite3_stmt* statement = m_statement.get();
  const ColumnKind kind = index < m_plan->columns.size() ? m_plan->columns[index].kind : ColumnKind::kPlain;
  return kind == ColumnKind::kPlain ? RawValue(statement, static_cast<int>(index))
                                    : OfKind(kind, RawValue(statement, static_cast<int>(index)));
}

void SqliteRecordset::UpdateTable(std::size_t table, const Changes& changes) {
  std::vector<std::size_t> columns;
  for (const auto& [column, value] : changes) {
    if (m_plan->columns[column].table == table) columns.push_back(column);
  }
  if (columns.empty()) return;
  const ValueView row = RowValue(m_plan->tables[table].rowColumn);
  const auto* rowNumber = std::get_if<std::int64_t>(&row);
  if (rowNumber == nullptr) {
    Raise(number::kReadOnly, "Cannot update: the row has no record in '" + m_plan->tables[table].name + "'.");
  }
  RowUpdate& update = FindRowUpdate(*m_session, *m_plan, columns);
  sqlite3_stmt* statement = update.statement.get();
  sqlite3_bind_int64(statement, 1, *rowNumber);
  int parameter = 2;
  for (const auto& [column, value] : changes) {
    if (m_plan->columns[column].table == table) Bind(statement, parameter++, value);
  }
  m_session->RunWrite(statement, update.disturbs, m_plan->tables[table].name);
  if (sqlite3_changes(m_session->Connection()) == 0) {
    Raise(number::kRecordDeleted, "Record is deleted: '" + m_plan->tables[table].name + "'.");
  }
}

void SqliteRecordset::Write(const Changes& changes) {
  for (std::size_t table = 0; table < m_plan->tables.size(); ++table) UpdateTable(table, changes);
}

}  // namespace kxrestore::engine::sqlite
