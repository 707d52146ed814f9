#include "engine/jet_file/jet_database.h"

#include <utility>

#include "engine/error_numbers.h"
#include "engine/jet_sql/reading/view_text.h"

namespace kxrestore::engine::jet_file {

JetDatabase::~JetDatabase() {
  try {
    JetDatabase::Close();
  } catch (const Error&) {  // uncommitted changes are rolled back
  }
}

void JetDatabase::CatchUp() {
  sqlite::Session& session = *Open();
  m_tables->Refresh();
  if (!m_tables->IsBehind()) return;
  session.Streaming().Detach();  // its rows may come from views that are about to be dropped
  session.ForgetPlans();
  m_tables->CatchUp();
  session.ForgetPlans();
}

std::unique_ptr<Recordset> JetDatabase::OpenRecordset(const Sql& sql, RecordsetType type,
                                                      const ColumnNames& read) {
  CatchUp();
  return SqliteDatabase::OpenRecordset(sql, type, read);
}

std::int64_t JetDatabase::Execute(const Sql& sql, int options) {
  CatchUp();
  return SqliteDatabase::Execute(sql, options);
}

bool JetDatabase::HasQuery(std::string_view name) const {
  if (const auto made = m_tables->Queries().Find(name)) return made->createView.has_value();
  return m_tables->File().FindQuery(name) != nullptr;
}

std::string JetDatabase::QueryText(std::string_view name) {
  Open();
  if (const auto made = m_tables->Queries().Find(name)) {
    if (!made->createView) RaiseItemNotFound(name);
    return jet_sql::QueryTextOfView(*made->createView);
  }
  const FileQuery* own = m_tables->File().FindQuery(name);
  if (own == nullptr) RaiseItemNotFound(name);
  if (own->problem) throw *own->problem;
  return own->text;
}

void JetDatabase::CreateQueryDef(std::string_view name, std::string_view sql) {
  OpenForWriting();
  std::string text = CreateViewText(name, sql);
  if (HasQuery(name) || m_tables->File().FindTable(name) != nullptr ||
      m_tables->File().Problem(name) != nullptr) {
    Raise(error_number::kObjectExists, "Object '" + std::string(name) + "' already exists.");
  }
  m_tables->Queries().Set(name, std::move(text));
}

void JetDatabase::DeleteQueryDef(std::string_view name) {
  Open();
  if (!HasQuery(name)) RaiseItemNotFound(name);
  OpenForWriting();
  m_tables->Queries().Set(name, std::nullopt);
}

void JetDatabase::BeginTrans() {
  SqliteDatabase::BeginTrans();
  m_before = m_tables->Queries().All();
}

void JetDatabase::CommitTrans() {
  SqliteDatabase::CommitTrans();
  m_before.reset();
}

void JetDatabase::Rollback() {
  OpenInTransaction();
  if (auto before = std::exchange(m_before, std::nullopt)) m_tables->Queries().Restore(std::move(*before));
  SqliteDatabase::Rollback();
}

void JetDatabase::Close() {
  if (auto before = std::exchange(m_before, std::nullopt)) m_tables->Queries().Restore(std::move(*before));
  SqliteDatabase::Close();
}

}  // namespace kxrestore::engine::jet_file
