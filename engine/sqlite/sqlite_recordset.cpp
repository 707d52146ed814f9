#include "engine/sqlite/sqlite_recordset.h"

namespace kxrestore::engine::sqlite {
namespace {

ValueView OfKind(jet_sql::ValueKind kind, const ValueView& value) {
  if (kind == jet_sql::ValueKind::kBoolean) {
    if (const auto* integer = std::get_if<std::int64_t>(&value)) return *integer != 0;
    if (const auto* real = std::get_if<double>(&value)) return *real != 0;
  } else if (kind == jet_sql::ValueKind::kDate) {
    if (const auto date = ToDateTime(value)) return *date;
  }
  return value;
}

}  // namespace

SqliteRecordset::SqliteRecordset(std::shared_ptr<Session> session, const Sql& sql, RecordsetType type,
                                 const ColumnNames& read, bool readOnly)
    : StreamedRecordset(type, readOnly), m_session(std::move(session)) {
  Outcome outcome = Open(sql, read);
  if (outcome.IsRow() &&
      m_statement.ColumnCount() != static_cast<int>(m_plan->columns.size() + m_plan->hidden)) {
    m_session->ForgetPlans();  // another program has changed the schema since the plan was made
    outcome = Open(sql, read);
  }
  if (outcome.IsRow()) {
    m_session->Streaming().Add(*this);
  } else if (!outcome.IsDone()) {
    m_session->Link().Raise(outcome.Code(), Doing::kReading, sql.Printed());
  }
  Begin(outcome.IsRow(), m_plan->columns.size(), m_plan->hidden);
}

Outcome SqliteRecordset::Open(const Sql& sql, const ColumnNames& read) {
  m_plan = m_session->FindPlan(sql, IsSnapshot() ? Session::Use::kSnapshot : Session::Use::kDynaset, read);
  m_statement = m_session->Acquire(*m_plan, sql.Values());
  return m_statement.Step(Stop::kWork);
}

SqliteRecordset::~SqliteRecordset() {
  ReleaseStatement();
}

void SqliteRecordset::ReleaseStatement() {
  if (!m_statement) return;
  m_session->Streaming().Remove(*this);
  Session::Release(*m_plan, std::move(m_statement));
}

bool SqliteRecordset::Fetch() {
  const Outcome outcome = m_statement.Step(Stop::kWork);
  if (outcome.IsRow()) return true;
  if (!outcome.IsDone()) m_session->Link().Raise(outcome.Code(), Doing::kReading, m_plan->sql.Text());
  return false;
}

ValueView SqliteRecordset::Streamed(std::size_t index) const {
  using jet_sql::ValueKind;
  const ValueKind kind = index < m_plan->columns.size() ? m_plan->columns[index].kind : ValueKind::kUnknown;
  const ValueView value = m_statement.Read(static_cast<int>(index));
  return kind == ValueKind::kUnknown ? value : OfKind(kind, value);
}

std::int64_t SqliteRecordset::UpdateRow(const std::vector<std::size_t>& columns, std::vector<Value>& values) {
  RowUpdate& update = FindRowUpdate(m_session->Link(), *m_plan, columns);
  update.statement.Bind(values);
  const PlanTable& table = m_plan->tables[m_plan->columns[columns.front()].table];
  m_session->RunWrite(update.statement, {update.disturbs, update.bounded}, table.name);
  return m_session->Link().Changes();
}

}  // namespace kxrestore::engine::sqlite
