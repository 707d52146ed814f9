#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "engine/session_database.h"
#include "engine/sqlite/session.h"

namespace kxrestore::engine::sqlite {

class SqliteDatabase final : public SessionDatabase<Session> {
 public:
  SqliteDatabase(const std::shared_ptr<Session>& session, bool readOnly)
      : SessionDatabase(session, readOnly || session->IsReadOnly()) {}
  ~SqliteDatabase() override;

  std::unique_ptr<Recordset> OpenRecordset(std::string_view source, RecordsetType type,
                                           const ColumnNames& read) override;
  std::unique_ptr<Recordset> OpenRecordset(const Sql& sql, RecordsetType type,
                                           const ColumnNames& read) override;
  std::int64_t Execute(std::string_view sql, int options) override;
  std::int64_t Execute(const Sql& sql, int options) override;
  std::string QueryText(std::string_view name) override;
  void CreateQueryDef(std::string_view name, std::string_view sql) override;
  void DeleteQueryDef(std::string_view name) override;
  void BeginTrans() override;
  void CommitTrans() override;
  void Rollback() override;
  void Close() override;

 private:
  // The kind and the CREATE text of a table or view; both empty when there is none. `name` gets its stored
  // case.
  struct Entry {
    std::string type, name, sql;
  };
  static Entry FindEntry(Session& session, std::string_view name);
  static void ChangeSchema(Session& session, const std::string& sql);
  bool IsDropped(std::string_view name) const;
  void Settle();

  // A saved query that is to go. It is dropped as soon as somebody could see the difference, and stays when
  // the same one is created before: then nothing is written at all.
  std::optional<Entry> m_dropped;
};

}  // namespace kxrestore::engine::sqlite
