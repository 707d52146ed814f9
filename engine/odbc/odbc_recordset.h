// A recordset on an executed statement.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/odbc/odbc_session.h"
#include "engine/streamed_recordset.h"

namespace kxrestore::engine::odbc {

class OdbcRecordset final : public StreamedRecordset {
 public:
  OdbcRecordset(std::shared_ptr<Session> session, const Sql& sql, RecordsetType type, const ColumnNames& read,
                bool readOnly);
  ~OdbcRecordset() override;
  OdbcRecordset(const OdbcRecordset&) = delete;
  OdbcRecordset& operator=(const OdbcRecordset&) = delete;

 private:
  bool Fetch() override { return m_statement->Next(); }
  void ReleaseStatement() override;
  ValueView Streamed(std::size_t index) const override { return m_statement->Value(index); }
  std::string_view ColumnName(std::size_t index) const override { return m_names[index]; }
  const std::string& Place() const override { return m_session->Place(); }
  const CachedPlan& StatementPlan() const override { return *m_plan; }
  std::int64_t UpdateRow(const std::vector<std::size_t>& columns, std::vector<Value>& values) override;

  void Open(const Sql& sql, const ColumnNames& read);
  // False when the tables have changed since the plan was made; `failed` then holds the driver's error, if
  // any.
  bool TryOpen(const Sql& sql, const ColumnNames& read, Outcome& failed);

  std::shared_ptr<Session> m_session;
  std::shared_ptr<Plan> m_plan;
  std::unique_ptr<OdbcStatement> m_statement;
  std::vector<std::string> m_names;
};

}  // namespace kxrestore::engine::odbc
