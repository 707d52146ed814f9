#include "engine/odbc/odbc_database.h"

#include "engine/odbc/odbc_recordset.h"
#include "engine/odbc/saved_queries.h"

namespace kxrestore::engine::odbc {

std::unique_ptr<Recordset> OdbcDatabase::OpenRecordset(const Sql& sql, RecordsetType type,
                                                       const ColumnNames& read) {
  return std::make_unique<OdbcRecordset>(Open(), sql, type, read, IsReadOnly());
}

std::int64_t OdbcDatabase::Execute(const Sql& sql, int /*options*/) {
  Session& session = *Open();
  const std::shared_ptr<Plan> plan = session.FindPlan(sql, Session::Use::kAction);
  OpenForWriting();
  auto statement = session.Acquire(*plan);
  const std::int64_t rows =
      session.RunWrite(*statement, ParameterValues(*plan, sql.Values(), session.Dialect()));
  Session::Release(*plan, std::move(statement));
  return rows;
}

std::string OdbcDatabase::QueryText(std::string_view name) {
  return SavedQueryText(*Open(), name);
}

void OdbcDatabase::CreateQueryDef(std::string_view name, std::string_view sql) {
  CreateSavedQuery(OpenForWriting(), name, sql);
}

void OdbcDatabase::DeleteQueryDef(std::string_view name) {
  DeleteSavedQuery(OpenForWriting(), name);
}

}  // namespace kxrestore::engine::odbc
