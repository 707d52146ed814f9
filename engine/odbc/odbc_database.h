#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "engine/odbc/odbc_session.h"
#include "engine/session_database.h"

namespace kxrestore::engine::odbc {

class OdbcDatabase final : public SessionDatabase<Session> {
 public:
  OdbcDatabase(std::shared_ptr<Session> session, bool readOnly)
      : SessionDatabase(std::move(session), readOnly) {}

  std::unique_ptr<Recordset> OpenRecordset(const Sql& sql, RecordsetType type,
                                           const ColumnNames& read) override;
  std::int64_t Execute(const Sql& sql, int options) override;
  std::string QueryText(std::string_view name) override;
  void CreateQueryDef(std::string_view name, std::string_view sql) override;
  void DeleteQueryDef(std::string_view name) override;
};

}  // namespace kxrestore::engine::odbc
