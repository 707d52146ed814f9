#include "engine/odbc/odbc_database.h"

#include "base/error.h"
#include "engine/error_numbers.h"
#include "engine/odbc/odbc_recordset.h"
#include "engine/odbc/saved_queries.h"

namespace kxrestore::engine::odbc {
namespace {

namespace number = kxrestore::engine::error_number;

[[noreturn]] void Raise(int errorNumber, std::string description) {
  throw Error(errorNumber, std::move(description), "Engine");
}

}  // namespace

OdbcDatabase::~OdbcDatabase() {
  try {
    Close();
  } catch (const Error&) {  // a server that is gone has undone the transaction
  }
}

void OdbcDatabase::Close() {
  const std::shared_ptr<Session> session = std::move(m_session);
  if (session && session->TransactionOwner() == this) session->UndoTransaction();
}

Session& OdbcDatabase::Open() const {
  if (!m_session) Raise(number::kObjectInvalid, "Object invalid or no longer set: the database.");
  return *m_session;
}

Session& OdbcDatabase::OpenForWriting() const {
  Session& session = Open();
  if (m_readOnly) {
    Raise(number::kReadOnly, "Cannot update. Database or object is read-only: '" + session.Server() + "'.");
  }
  return session;
}

Session& OdbcDatabase::OpenInTransaction() const {
  Session& session = Open();
  if (session.TransactionOwner() == this) return session;
  Raise(number::kNoTransaction,
        "You tried to commit or rollback a transaction without first beginning a transaction.");
}

std::unique_ptr<Recordset> OdbcDatabase::OpenRecordset(std::string_view source, RecordsetType type) {
  Open();
  return std::make_unique<OdbcRecordset>(m_session, source, type, m_readOnly);
}

std::int64_t OdbcDatabase::Execute(std::string_view sql, int /*options*/) {
  Session& session = Open();
  const std::shared_ptr<Plan> plan = session.FindPlan(sql, Session::Use::kAction);
  OpenForWriting();
  auto statement = session.Acquire(*plan);
  const std::int64_t rows =
      session.RunWrite(*statement, ParameterValues(*plan, session.Literals(), session.Dialect()));
  Session::Release(*plan, std::move(statement));
  return rows;
}

std::string OdbcDatabase::QueryText(std::string_view name) {
  return SavedQueryText(Open(), name);
}

void OdbcDatabase::CreateQueryDef(std::string_view name, std::string_view sql) {
  CreateSavedQuery(OpenForWriting(), name, sql);
}

void OdbcDatabase::DeleteQueryDef(std::string_view name) {
  DeleteSavedQuery(OpenForWriting(), name);
}

void OdbcDatabase::BeginTrans() {
  OpenForWriting().BeginTransaction(*this);
}

void OdbcDatabase::CommitTrans() {
  OpenInTransaction().CommitTransaction();
}

void OdbcDatabase::Rollback() {
  OpenInTransaction().UndoTransaction();
}

}  // namespace kxrestore::engine::odbc
