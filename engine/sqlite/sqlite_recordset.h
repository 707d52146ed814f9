// A recordset over a prepared statement.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "engine/sqlite/session.h"
#include "engine/streamed_recordset.h"

namespace kxrestore::engine::sqlite {

class SqliteRecordset final : public StreamedRecordset {
 public:
  SqliteRecordset(std::shared_ptr<Session> session, const Sql& sql, RecordsetType type,
                  const ColumnNames& read, bool readOnly);
  ~SqliteRecordset() override;
  SqliteRecordset(const SqliteRecordset&) = delete;
  SqliteRecordset& operator=(const SqliteRecordset&) = delete;

 private:
  bool Fetch() override;
  void ReleaseStatement() override;
  ValueView Streamed(std::size_t index) const override;
  std::string_view ColumnName(std::size_t index) const override { return m_plan->columns[index].name; }
  const std::string& Place() const override { return m_session->Place(); }
  const CachedPlan& StatementPlan() const override { return *m_plan; }
  std::int64_t UpdateRow(const std::vector<std::size_t>& columns, std::vector<Value>& values) override;

  Outcome Open(const Sql& sql, const ColumnNames& read);

  std::shared_ptr<Session> m_session;
  std::shared_ptr<Plan> m_plan;
  Statement m_statement;
};

}  // namespace kxrestore::engine::sqlite
