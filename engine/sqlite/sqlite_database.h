// A database on a catalog file.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "engine/session_database.h"
#include "engine/sqlite/session.h"

namespace kxrestore::engine::sqlite {

class SqliteDatabase : public SessionDatabase<Session> {
 public:
  SqliteDatabase(const std::shared_ptr<Session>& session, bool readOnly)
      : SessionDatabase(session, readOnly || session->IsReadOnly()) {}

  std::unique_ptr<Recordset> OpenRecordset(const Sql& sql, RecordsetType type,
                                           const ColumnNames& read) override;
  std::int64_t Execute(const Sql& sql, int options) override;
  std::string QueryText(std::string_view name) override;
  void CreateQueryDef(std::string_view name, std::string_view sql) override;
  void DeleteQueryDef(std::string_view name) override;

 private:
  const std::shared_ptr<Session>& OpenSettled() const;
};

}  // namespace kxrestore::engine::sqlite
