// A database on a file of the desktop engine. Statements run as on an SQLite catalog file; saved queries are
// kept in memory.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "engine/jet_file/jet_tables.h"
#include "engine/sqlite/sqlite_database.h"

namespace kxrestore::engine::jet_file {

class JetDatabase final : public sqlite::SqliteDatabase {
 public:
  // `tables` is what the session reads from.
  JetDatabase(const std::shared_ptr<sqlite::Session>& session, std::shared_ptr<JetTables> tables,
              bool readOnly)
      : SqliteDatabase(session, readOnly), m_tables(std::move(tables)) {}
  ~JetDatabase() override;

  std::unique_ptr<Recordset> OpenRecordset(const Sql& sql, RecordsetType type,
                                           const ColumnNames& read) override;
  std::int64_t Execute(const Sql& sql, int options) override;
  std::string QueryText(std::string_view name) override;
  void CreateQueryDef(std::string_view name, std::string_view sql) override;
  void DeleteQueryDef(std::string_view name) override;
  void BeginTrans() override;
  void CommitTrans() override;
  void Rollback() override;
  void Close() override;

 private:
  bool HasQuery(std::string_view name) const;
  void CatchUp();

  std::shared_ptr<JetTables> m_tables;
  std::optional<MadeQueries> m_before;  // restored by a rollback
};

}  // namespace kxrestore::engine::jet_file
