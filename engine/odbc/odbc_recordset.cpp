#include "engine/odbc/odbc_recordset.h"

#include <algorithm>

#include "engine/error_numbers.h"
#include "engine/odbc/odbc_planner.h"

namespace kxrestore::engine::odbc {
namespace {

namespace number = error_number;
using jet_sql::ValueKind;

// A value converted to the column's type where the server would otherwise refuse it.
Value ForColumn(const Value& value, ValueKind kind) {
  const ValueView view = ViewOf(value);
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

OdbcRecordset::OdbcRecordset(std::shared_ptr<Session> session, const Sql& sql, RecordsetType type,
                             const ColumnNames& read, bool readOnly)
    : StreamedRecordset(type, readOnly), m_session(std::move(session)) {
  Open(sql, read);
  const std::vector<ColumnType>& columns = m_rows->Columns();
  for (std::size_t i = 0; i + m_plan->hidden < columns.size(); ++i) m_names.push_back(columns[i].name);
  const bool hasRow = m_rows->Next();
  m_plan->isShort = m_rows->InOneBlock();
  // Completely fetched rows no longer change.
  const bool stays =
      m_session->Facts().fetchesAllAtOnce && !m_session->FetchesPiecewise() && m_rows->InOneBlock();
  if (hasRow && !stays) m_session->Streaming().Add(*this);
  Begin(hasRow, m_names.size(), columns.size() - m_names.size());
}

// Other programs may have changed tables and queries since the plan was made, so a failing plan is remade
// once.
void OdbcRecordset::Open(const Sql& sql, const ColumnNames& read) {
  Outcome failed;
  if (TryOpen(sql, read, failed)) return;
  m_session->ForgetPlans();
  m_statement.reset();
  if (TryOpen(sql, read, failed)) return;
  if (failed.Failed()) m_session->RaiseFailure(failed, sql.Printed());
  Raise(number::kOdbcFailed, "ODBC - call failed: the columns of '" + sql.Printed() + "' keep changing.");
}

bool OdbcRecordset::TryOpen(const Sql& sql, const ColumnNames& read, Outcome& failed) {
  m_plan = m_session->FindPlan(sql, IsSnapshot() ? Session::Use::kSnapshot : Session::Use::kDynaset, read);
  m_statement = m_session->Acquire(*m_plan);
  m_session->FetchPiecewise(!m_plan->isShort);
  const auto values = ParameterValues(*m_plan, sql.Values(), m_session->Dialect());
  if (!m_session->RunRead(*m_statement, values, failed)) return false;
  m_rows = &m_statement->Rows();
  return !m_plan->columnsKnown || m_rows->Columns().size() == m_plan->columns.size() + m_plan->hidden;
}

OdbcRecordset::~OdbcRecordset() {
  LetStatementGo();
}

void OdbcRecordset::LetStatementGo() {
  if (!m_statement) return;
  m_session->Streaming().Remove(*this);
  Session::Release(*m_plan, std::move(m_statement));
}

bool OdbcRecordset::CanChangeRows() const {
  const auto& tables = m_plan->tables;
  return std::any_of(tables.begin(), tables.end(),
                     [](const PlanTable& table) { return !table.keys.empty(); });
}

bool OdbcRecordset::CanChange(std::size_t index) const {
  if (index >= m_plan->columns.size()) return false;
  const jet_sql::ResultColumn& column = m_plan->columns[index];
  return column.table < m_plan->tables.size() && !m_plan->tables[column.table].keys.empty();
}

void OdbcRecordset::UpdateTable(std::size_t table, const Changes& changes) {
  std::vector<std::size_t> columns;
  std::vector<Value> values;
  for (const auto& [column, value] : changes) {
    const jet_sql::ResultColumn& changed = m_plan->columns[column];
    if (changed.table != table) continue;
    columns.push_back(column);
    values.push_back(ForColumn(value, changed.kind));
  }
  if (columns.empty()) return;
  const PlanTable& changed = m_plan->tables[table];
  for (const std::size_t key : changed.keyColumns) {
    const ValueView value = RowValue(m_names.size() + key);
    if (IsNull(value)) {
      Raise(number::kReadOnly, "Cannot update: the row has no record in '" + changed.name + "'.");
    }
    values.push_back(OwnedOf(value));
  }
  const RowUpdate& update = FindRowUpdate(*m_session, *m_plan, columns);
  if (m_session->RunWrite(*update.statement, values) == 0) {
    Raise(number::kRecordDeleted, "Record is deleted: '" + changed.name + "'.");
  }
}

void OdbcRecordset::Write(const Changes& changes) {
  for (std::size_t table = 0; table < m_plan->tables.size(); ++table) UpdateTable(table, changes);
}

}  // namespace kxrestore::engine::odbc
