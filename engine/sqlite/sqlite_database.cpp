#include "engine/sqlite/sqlite_database.h"

#include <utility>

#include "engine/error_numbers.h"
#include "engine/jet_sql/printing/dialect.h"
#include "engine/jet_sql/printing/printer.h"
#include "engine/jet_sql/reading/source_text.h"
#include "engine/jet_sql/reading/view_text.h"
#include "engine/sqlite/sqlite_recordset.h"

namespace kxrestore::engine::sqlite {
namespace {

std::string CreateViewText(std::string_view name, std::string_view sql) {
  const jet_sql::Statement statement = jet_sql::ParseReading(sql);
  const jet_sql::SqliteDialect dialect(true);
  return "CREATE VIEW " + dialect.Identifier(name) + " AS " + jet_sql::Print(statement, dialect);
}

}  // namespace

const std::shared_ptr<Session>& SqliteDatabase::OpenSettled() const {
  const std::shared_ptr<Session>& session = Open();
  session->Settle();
  return session;
}

std::unique_ptr<Recordset> SqliteDatabase::OpenRecordset(const Sql& sql, RecordsetType type,
                                                         const ColumnNames& read) {
  return std::make_unique<SqliteRecordset>(OpenSettled(), sql, type, read, IsReadOnly());
}

std::int64_t SqliteDatabase::Execute(const Sql& sql, int /*options*/) {
  Session& session = *OpenSettled();
  const std::shared_ptr<Plan> plan = session.FindPlan(sql, Session::Use::kAction);
  OpenForWriting();
  Statement statement = session.Acquire(*plan, sql.Values());
  session.RunWrite(statement, {true, plan->bounded}, plan->sql.Text());
  const std::int64_t changes = session.Link().Changes();
  Session::Release(*plan, std::move(statement));
  return changes;
}

std::string SqliteDatabase::QueryText(std::string_view name) {
  Session& session = *Open();
  if (session.IsDropped(name)) session.Settle();
  const SchemaEntry entry = session.Link().FindEntry(name);
  if (entry.type != "view") RaiseItemNotFound(name);
  return jet_sql::QueryTextOfView(entry.sql);
}

void SqliteDatabase::CreateQueryDef(std::string_view name, std::string_view sql) {
  OpenForWriting().CreateView(name, CreateViewText(name, sql));
}

void SqliteDatabase::DeleteQueryDef(std::string_view name) {
  Session& session = *OpenSettled();
  if (IsReadOnly() && session.Link().FindEntry(name).type != "view") RaiseItemNotFound(name);
  OpenForWriting().DropView(name);
}

}  // namespace kxrestore::engine::sqlite
