#include "engine/sqlite/sqlite_database.h"

#include <utility>

#include "base/error.h"
#include "base/text.h"
#include "engine/error_numbers.h"
#include "engine/jet_sql/dialect.h"
#include "engine/jet_sql/parser.h"
#include "engine/jet_sql/printer.h"
#include "engine/jet_sql/view_text.h"
#include "engine/sqlite/sqlite_recordset.h"

namespace kxrestore::engine::sqlite {
namespace {

namespace number = kxrestore::engine::error_number;

[[noreturn]] void Raise(int errorNumber, std::string description) {
  throw Error(errorNumber, std::move(description), "Engine");
}

std::string ColumnText(sqlite3_stmt* statement, int column) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
  return text == nullptr ? std::string() : std::string(text, sqlite3_column_bytes(statement, column));
}

std::string CreateViewText(std::string_view name, std::string_view sql) {
  const jet_sql::Statement statement = jet_sql::Parse(sql);
  if (!jet_sql::IsReading(statement)) {
    throw Error(number::kInvalidOperation,
                "Invalid operation: '" + std::string(LeftCharacters(sql, 80)) + "' is no reading statement.",
                "Engine");
  }
  const jet_sql::SqliteDialect dialect(true);
  return "CREATE VIEW " + dialect.Identifier(name) + " AS " + jet_sql::Print(statement, dialect);
}

}  // namespace

SqliteDatabase::~SqliteDatabase() {
  try {
    Close();
  } catch (const Error&) {  // rows that a recordset could not take into memory are told when they are read
  }
}

void SqliteDatabase::Close() {
  if (m_session) Settle();
  const std::shared_ptr<Session> session = std::move(m_session);
  if (session && session->TransactionOwner() == this) session->UndoTransaction();
}

Session& SqliteDatabase::Open() const {
  if (!m_session) Raise(number::kObjectInvalid, "Object invalid or no longer set: the database.");
  return *m_session;
}

Session& SqliteDatabase::OpenForWriting() const {
  Session& session = Open();
  if (m_readOnly || session.IsReadOnly()) {
    Raise(number::kReadOnly, "Cannot update. Database or object is read-only: '" + session.File() + "'.");
  }
  return session;
}

std::unique_ptr<Recordset> SqliteDatabase::OpenRecordset(std::string_view source, RecordsetType type) {
  Open();
  Settle();
  return std::make_unique<SqliteRecordset>(m_session, source, type, m_readOnly);
}

std::int64_t SqliteDatabase::Execute(std::string_view sql, int /*options*/) {
  Session& session = Open();
  Settle();
  const std::shared_ptr<Plan> plan = session.FindPlan(sql, Session::Use::kAction);
  OpenForWriting();
  Statement statement = session.Acquire(*plan);
  session.RunWrite(statement.get(), true, sql);
  const std::int64_t changes = sqlite3_changes64(session.Connection());
  Session::Release(*plan, std::move(statement));
  return changes;
}

void SqliteDatabase::BeginTrans() {
  Session& session = OpenForWriting();
  Settle();
  session.BeginTransaction(*this);
}

Session& SqliteDatabase::OpenInTransaction() const {
  Session& session = Open();
  if (session.TransactionOwner() == this) return session;
  Raise(number::kNoTransaction,
        "You tried to commit or rollback a transaction without first beginning a transaction.");
}

void SqliteDatabase::CommitTrans() {
  Session& session = OpenInTransaction();
  Settle();
  session.CommitTransaction();
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
  ChangeSchema(Open(), "DROP VIEW " + jet_sql::SqliteDialect(true).Identifier(dropped.name));
}

std::string SqliteDatabase::QueryText(std::string_view name) {
  if (IsDropped(name)) Settle();
  const Entry entry = FindEntry(Open(), name);
  if (entry.type != "view") {
    Raise(number::kItemNotFound, "Item not found in this collection: '" + std::string(name) + "'.");
  }
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
    Raise(number::kObjectExists, "Object '" + std::string(name) + "' already exists.");
  }
  ChangeSchema(session, text);
}

void SqliteDatabase::DeleteQueryDef(std::string_view name) {
  Session& session = Open();
  Settle();
  if (!m_readOnly && !session.IsReadOnly())
    session.BeginGroup();  // what is read now holds until it is made again
  Entry entry = FindEntry(session, name);
  if (entry.type != "view") {
    Raise(number::kItemNotFound, "Item not found in this collection: '" + std::string(name) + "'.");
  }
  OpenForWriting();
  m_dropped = std::move(entry);
}

}  // namespace kxrestore::engine::sqlite
