// A statement of a session: prepared once, executed with values, rows fetched in blocks.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

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
  Outcome Execute(const std::vector<engine::Value>& values) { return ExecuteWith(values, false); }
  // The same for a statement that returns rows; also fetches the first block.
  Outcome ExecuteReading(const std::vector<engine::Value>& values) { return ExecuteWith(values, true); }
  // Executes without preparing, for statements that servers cannot prepare.
  Outcome ExecuteDirect();
  // Calls one of the driver's catalog functions instead.
  Outcome ExecuteCatalog(StatementData::CatalogFunction function);

  std::int64_t ChangedRows() const { return m_data->ChangedRows(); }

  // The rows of the execution, positioned before the first.
  const std::vector<Column>& Columns() const { return m_data->Rows().Columns(); }
  bool Next();
  // Value in the current row; a text is valid until the next call of Next.
  ValueView Value(std::size_t column) const;
  // Whether the first block contains all rows.
  bool InOneBlock() const { return m_isFirstBlock && m_data->Rows().IsLast(); }
  void CloseCursor() noexcept;

 private:
  struct Converted {
    std::string text;
    std::uint64_t row = 0;  // number of the row that it belongs to
  };

  Outcome ExecuteWith(const std::vector<engine::Value>& values, bool wantsRows);
  Outcome RunReading(std::function<Outcome(DriverHandles&)> call);
  bool HoldsServer() const { return m_isOpen && !m_data->Rows().IsLast(); }
  std::string_view TextOf(std::size_t column) const;
  void ReadLongText(std::size_t column) const;

  Session& m_session;
  std::shared_ptr<StatementData> m_data;
  mutable std::vector<Converted> m_texts;  // by column
  bool m_isOpen = false, m_beforeFirst = true, m_isFirstBlock = true;
  std::size_t m_row = 0;       // in the block
  std::uint64_t m_number = 0;  // among all rows read so far
};

}  // namespace kxrestore::engine::odbc
