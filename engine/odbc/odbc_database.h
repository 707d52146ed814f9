// A database on a server.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "engine/odbc/odbc_recordset.h"
#include "engine/odbc/odbc_session.h"
#include "engine/odbc/saved_queries.h"
#include "engine/session_database.h"

namespace kxrestore::engine::odbc {

class OdbcDatabase final : public SessionDatabase<Session> {
 public:
  OdbcDatabase(std::shared_ptr<Session> session, bool readOnly)
      : SessionDatabase(std::move(session), readOnly) {}

  std::unique_ptr<Recordset> OpenRecordset(const Sql& sql, RecordsetType type,
                                           const ColumnNames& read) override {
    return std::make_unique<OdbcRecordset>(Open(), sql, type, read, IsReadOnly());
  }

  std::int64_t Execute(const Sql& sql, int /*options*/) override {
    Session& session = *Open();
    const std::shared_ptr<Plan> plan = session.FindPlan(sql, StatementUse::kAction);
    OpenForWriting();
    auto statement = session.Acquire(*plan);
    const std::int64_t rows =
        session.RunWrite(*statement, ParameterValues(*plan, sql.Values(), session.Dialect()));
    Session::Release(*plan, std::move(statement));
    return rows;
  }

  std::string QueryText(std::string_view name) override { return SavedQueryText(*Open(), name); }
  void CreateQueryDef(std::string_view name, std::string_view sql) override {
    CreateSavedQuery(OpenForWriting(), name, sql);
  }
  void DeleteQueryDef(std::string_view name) override { DeleteSavedQuery(OpenForWriting(), name); }
};

}  // namespace kxrestore::engine::odbc
