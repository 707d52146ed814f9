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

}  // namespace

SqliteRecordset::SqliteRecordset(std::shared_ptr<Session> session, const Sql& sql, RecordsetType type,
                                 const ColumnNames& read, bool readOnly)
    : StreamedRecordset(type, readOnly), m_session(std::move(session)) {
  Outcome outcome = Open(sql, read);
  if (outcome.IsRow() && m_statement.ColumnCount() != static_cast<int>(m_plan->allColumns)) {
    m_session->ForgetPlans();  // somebody else has changed the schema meanwhile
    outcome = Open(sql, read);
  }
  if (outcome.IsRow()) {
    m_session->Streaming().Add(*this);
  } else if (!outcome.IsDone()) {
    m_session->Link().Raise(outcome.Code(), Doing::kReading, sql.Printed());
  }
  Begin(outcome.IsRow(), m_plan->columns.size(), m_plan->allColumns - m_plan->columns.size());
}

Outcome SqliteRecordset::Open(const Sql& sql, const ColumnNames& read) {
  m_plan = m_session->FindPlan(sql, IsSnapshot() ? Session::Use::kSnapshot : Session::Use::kDynaset, read);
  m_statement = m_session->Acquire(*m_plan, sql.Values());
  return m_statement.Step(Stop::kWork);
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
  const Outcome outcome = m_statement.Step(mayStop ? Stop::kWork : Stop::kNothing);
  if (outcome.IsRow()) return true;
  if (!outcome.IsDone()) m_session->Link().Raise(outcome.Code(), Doing::kReading, m_plan->sql);
  return false;
}

ValueView SqliteRecordset::Streamed(std::size_t index) const {
  const ColumnKind kind = index < m_plan->columns.size() ? m_plan->columns[index].kind : ColumnKind::kPlain;
  const ValueView value = m_statement.Read(static_cast<int>(index));
  return kind == ColumnKind::kPlain ? value : OfKind(kind, value);
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
  RowUpdate& update = FindRowUpdate(m_session->Link(), *m_plan, columns);
  update.statement.Bind(1, *rowNumber);
  int parameter = 2;
  for (const auto& [column, value] : changes) {
    if (m_plan->columns[column].table == table) update.statement.Bind(parameter++, value);
  }
  m_session->RunWrite(update.statement, {update.disturbs, update.bounded}, m_plan->tables[table].name);
  if (m_session->Link().Changes() == 0) {
    Raise(number::kRecordDeleted, "Record is deleted: '" + m_plan->tables[table].name + "'.");
  }
}

void SqliteRecordset::Write(const Changes& changes) {
  for (std::size_t table = 0; table < m_plan->tables.size(); ++table) UpdateTable(table, changes);
}

}  // namespace kxrestore::engine::sqlite
