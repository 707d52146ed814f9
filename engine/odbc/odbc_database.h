#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "engine/database.h"
#include "engine/odbc/odbc_session.h"

namespace kxrestore::engine::odbc {

class OdbcDatabase final : public Database {
 public:
  OdbcDatabase(std::shared_ptr<Session> session, bool readOnly)
      : m_session(std::move(session)), m_readOnly(readOnly) {}
  ~OdbcDatabase() override;

  std::unique_ptr<Recordset> OpenRecordset(std::string_view source, RecordsetType type) override;
  std::int64_t Execute(std::string_view sql, int options) override;
  std::string QueryText(std::string_view name) override;
  void CreateQueryDef(std::string_view name, std::string_view sql) override;
  void DeleteQueryDef(std::string_view name) override;
  void BeginTrans() override;
  void CommitTrans() override;
  void Rollback() override;
  void Close() override;

 private:
  Session& Open() const;
  Session& OpenForWriting() const;
  Session& OpenInTransaction() const;

  std::shared_ptr<Session> m_session;
  bool m_readOnly;
};

}  // namespace kxrestore::engine::odbc
