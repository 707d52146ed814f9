#include "engine/odbc/odbc_statement.h"

#include <utility>

#include "engine/odbc/odbc_session.h"

namespace kxrestore::engine::odbc {

OdbcStatement::OdbcStatement(Session& session, jet_sql::PrintedSql sql)
    : m_session(session),
      m_data(std::make_shared<StatementData>(std::move(sql), session.Facts(), kQueryTimeout)),
      m_rows(session, m_data) {}

OdbcStatement::~OdbcStatement() {
  m_session.Driver().Free(*m_data, HoldsServer());
}

Outcome OdbcStatement::ExecuteWith(const std::vector<Value>& values, bool wantsRows) {
  const bool byName = !m_session.FetchesPiecewise();
  if (byName && m_data->WantsName()) m_data->SetName(m_session.NameForPrepared());
  m_data->SetValues(values);
  const auto execute = [data = m_data, byName, wantsRows](DriverHandles& handles) {
    return StatementData::Execute(handles, data, byName, wantsRows);
  };
  m_isOpen = wantsRows;
  return m_session.Run(execute, m_data);
}

Outcome OdbcStatement::Execute(const std::vector<Value>& values) {
  return ExecuteWith(values, false);
}

Outcome OdbcStatement::ExecuteReading(const std::vector<Value>& values) {
  return ExecuteWith(values, true);
}

Outcome OdbcStatement::ExecuteDirect() {
  const auto execute = [data = m_data](DriverHandles& handles) {
    return StatementData::ExecuteDirect(handles, data);
  };
  return m_session.Run(execute, m_data);
}

Outcome OdbcStatement::ExecuteCatalog(StatementData::CatalogFunction function) {
  const auto execute = [data = m_data, function = std::move(function)](DriverHandles& handles) {
    return StatementData::Ask(handles, data, function);
  };
  m_isOpen = true;
  return m_session.Run(execute, m_data);
}

RowReader& OdbcStatement::Rows() {
  m_rows.Restart();
  return m_rows;
}

void OdbcStatement::CloseCursor() noexcept {
  m_session.Driver().Close(*m_data, HoldsServer());
  m_isOpen = false;
}

}  // namespace kxrestore::engine::odbc
