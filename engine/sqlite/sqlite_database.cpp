#include "engine/sqlite/sqlite_database.h"

#include <utility>

#include "base/error.h"
#include "base/text.h"
#include "engine/error_numbers.h"
#include "engine/jet_sql/printing/dialect.h"
#include "engine/jet_sql/printing/printer.h"
#include "engine/jet_sql/reading/source_text.h"
#include "engine/jet_sql/reading/view_text.h"
#include "engine/sqlite/sqlite_recordset.h"

namespace kxrestore::engine::sqlite {
namespace {

std::string ColumnText(sqlite3_stmt* statement, int column) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
  return text == nullptr ? std::string() : std::string(text, sqlite3_column_bytes(statement, column));
}

std::string CreateViewText(std::string_view name, std::string_view sql) {
  const jet_sql::Statement statement = jet_sql::ParseReading(sql);
  const jet_sql::SqliteDialect dialect(true);
  return "CREATE VIEW " + dialect.Identifier(name) + " AS " + jet_sql::Print(statement, dialect);
}

}  // namespace

SqliteDatabase::~SqliteDatabase() {
  try {
    Settle();
  } catch (const Error&) {  // rows that a recordset could not take into memory are told when they are read
  }
}

void SqliteDatabase::Close() {
  Settle();
  SessionDatabase::Close();
}

std::unique_ptr<Recordset> SqliteDatabase::OpenRecordset(std::string_view source, RecordsetType type,
                                                         const ColumnNames& read) {
  return OpenRecordset(Sql(source), type, read);
}

std::unique_ptr<Recordset> SqliteDatabase::OpenRecordset(const Sql& sql, RecordsetType type,
                                                         const ColumnNames& read) {
  Settle();
  return std::make_unique<SqliteRecordset>(Open(), sql, type, read, IsReadOnly());
}

std::int64_t SqliteDatabase::Execute(std::string_view sql, int options) {
  return Execute(Sql(sql), options);
}

std::int64_t SqliteDatabase::Execute(const Sql& sql, int /*options*/) {
  Session& session = *Open();
  Settle();
  const std::shared_ptr<Plan> plan = session.FindPlan(sql, Session::Use::kAction);
  OpenForWriting();
  Statement statement = session.Acquire(*plan);
  session.RunWrite(statement.get(), true, plan->sql);
  const std::int64_t changes = sqlite3_changes64(session.Connection());
  Session::Release(*plan, std::move(statement));
  return changes;
}

void SqliteDatabase::BeginTrans() {
  Settle();
  SessionDatabase::BeginTrans();
}

void SqliteDatabase::CommitTrans() {
  Settle();
  SessionDatabase::CommitTrans();
}

void SqliteDatabase::Rollback() {
  Session& session = OpenInTransaction();
  m_dropped.reset();
  session.UndoTransaction();
}

SqliteDatabase::Entry SqliteDatabase::FindEntry(Session& session, std::string_view name) {
  const Statement find = session.Prepare(
      "SELECT type, name, sql FROM sqlite_schema WHERE type IN ('table', 'view') AND name = ?1 COLLATE "
      "NOCASE");
  sqlite3_bind_text64(find.get(), 1, name.data(), name.size(), SQLITE_STATIC, SQLITE_UTF8);
  const int code = sqlite3_step(find.get());
  if (code == SQLITE_DONE) return {};
  if (code != SQLITE_ROW) session.Raise(code, Doing::kReading, name);
  return {ColumnText(find.get(), 0), ColumnText(find.get(), 1), ColumnText(find.get(), 2)};
}

void SqliteDatabase::ChangeSchema(Session& session, const std::string& sql) {
  session.ForgetPlans();
  const Statement statement = session.Prepare(sql, Doing::kWriting);
  session.RunWrite(statement.get(), true, sql);
  session.ForgetPlans();
}

bool SqliteDatabase::IsDropped(std::string_view name) const {
  return m_dropped && EqualIgnoringCase(m_dropped->name, name);
}

void SqliteDatabase::Settle() {
  if (!m_dropped) return;
  const Entry dropped = *std::exchange(m_dropped, std::nullopt);
  ChangeSchema(*Open(), "DROP VIEW " + jet_sql::SqliteDialect(true).Identifier(dropped.name));
}

std::string SqliteDatabase::QueryText(std::string_view name) {
  if (IsDropped(name)) Settle();
  const Entry entry = FindEntry(*Open(), name);
  if (entry.type != "view") RaiseItemNotFound(name);
  return jet_sql::QueryTextOfView(entry.sql);
}

void SqliteDatabase::CreateQueryDef(std::string_view name, std::string_view sql) {
  Session& session = OpenForWriting();
  const std::string text = CreateViewText(name, sql);
  if (IsDropped(name) && m_dropped->sql == text) {
    m_dropped.reset();
    return;
  }
  Settle();
  if (!FindEntry(session, name).type.empty()) {
    Raise(error_number::kObjectExists, "Object '" + std::string(name) + "' already exists.");
  }
  ChangeSchema(session, text);
}

void SqliteDatabase::DeleteQueryDef(std::string_view name) {
  Session& session = *Open();
  Settle();
  if (!IsReadOnly()) session.BeginGroup();  // what is read now holds until it is made again
  Entry entry = FindEntry(session, name);
  if (entry.type != "view") RaiseItemNotFound(name);
  OpenForWriting();
  m_dropped = std::move(entry);
}

}  // namespace kxrestore::engine::sqlite
