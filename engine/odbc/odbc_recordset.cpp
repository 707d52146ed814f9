#include "engine/odbc/odbc_recordset.h"

#include "engine/error_numbers.h"

namespace kxrestore::engine::odbc {
namespace {

namespace number = error_number;
}  // namespace

OdbcRecordset::OdbcRecordset(std::shared_ptr<Session> session, const Sql& sql, RecordsetType type,
                             const ColumnNames& read, bool readOnly)
    : StreamedRecordset(type, readOnly), m_session(std::move(session)) {
  Open(sql, read);
  const std::vector<Column>& columns = m_statement->Columns();
  for (std::size_t i = 0; i + m_plan->hidden < columns.size(); ++i) m_names.push_back(columns[i].name);
  const bool hasRow = m_statement->Next();
  m_plan->isShort = m_statement->InOneBlock();
  // Completely fetched rows no longer change.
  const bool stays =
      m_session->Facts().fetchesAllAtOnce && !m_session->FetchesPiecewise() && m_statement->InOneBlock();
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
  return !m_plan->columnsKnown || m_statement->Columns().size() == m_plan->columns.size() + m_plan->hidden;
}

OdbcRecordset::~OdbcRecordset() {
  ReleaseStatement();
}

void OdbcRecordset::ReleaseStatement() {
  if (!m_statement) return;
  m_session->Streaming().Remove(*this);
  Session::Release(*m_plan, std::move(m_statement));
}

std::int64_t OdbcRecordset::UpdateRow(const std::vector<std::size_t>& columns, std::vector<Value>& values) {
  for (std::size_t i = 0; i < columns.size(); ++i) {
    values[i] = ForColumn(values[i], m_plan->columns[columns[i]].kind);
  }
  const auto make = [this](const PlanTable& /*table*/, const jet_sql::PrintedSql& sql) {
    auto update = std::make_unique<RowUpdate>();
    update->statement = std::make_unique<OdbcStatement>(*m_session, sql);
    return update;
  };
  const RowUpdate& update = FindRowUpdate(*m_plan, columns, m_session->Dialect(), make);
  return m_session->RunWrite(*update.statement, values);
}

}  // namespace kxrestore::engine::odbc
