// A statement of a session: prepared once, executed with values, rows fetched in blocks.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/odbc/odbc_rows.h"
#include "engine/odbc/statement_data.h"
#include "engine/value.h"

namespace kxrestore::engine::odbc {

class Session;

// Must not outlive its session. Functions that execute raise the errors of Session::Run; a driver's error is
// returned in the outcome.
class OdbcStatement {
 public:
  OdbcStatement(Session& session, jet_sql::PrintedSql sql);
  ~OdbcStatement();
  OdbcStatement(const OdbcStatement&) = delete;
  OdbcStatement& operator=(const OdbcStatement&) = delete;

  const jet_sql::PrintedSql& Sql() const { return m_data->Sql(); }

  // Executes; prepares first if necessary.
  Outcome Execute(const std::vector<Value>& values);
  // The same for a statement that returns rows; also fetches the first block.
  Outcome ExecuteReading(const std::vector<Value>& values);
  // Executes without preparing, for statements that servers cannot prepare.
  Outcome ExecuteDirect();
  // Calls one of the driver's catalog functions instead.
  Outcome ExecuteCatalog(StatementData::CatalogFunction function);

  std::int64_t RowCount() const { return m_data->ChangedRows(); }
  // The rows of the execution, positioned before the first.
  RowReader& Rows();
  void CloseCursor() noexcept;

 private:
  Outcome ExecuteWith(const std::vector<Value>& values, bool wantsRows);
  bool HoldsServer() const { return m_isOpen && !m_data->Rows().IsLast(); }

  Session& m_session;
  std::shared_ptr<StatementData> m_data;
  RowReader m_rows;
  bool m_isOpen = false;
};

}  // namespace kxrestore::engine::odbc
