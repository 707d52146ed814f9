// An engine that hands every call on to another one. Test engines derive from these and override what they
// watch or make fail.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>

#include "engine/database.h"

namespace kxrestore::dialog_test {

class PassThroughRecordset : public engine::Recordset {
 public:
  explicit PassThroughRecordset(std::unique_ptr<engine::Recordset> rows) : m_rows(std::move(rows)) {}
  bool Eof() const override { return m_rows->Eof(); }
  void MoveNext() override { m_rows->MoveNext(); }
  std::size_t FieldCount() const override { return m_rows->FieldCount(); }
  std::string_view FieldName(std::size_t index) const override { return m_rows->FieldName(index); }
  engine::ValueView FieldValue(std::size_t index) const override { return m_rows->FieldValue(index); }
  void Edit() override { m_rows->Edit(); }
  void SetFieldValue(std::size_t index, engine::Value value) override {
    m_rows->SetFieldValue(index, std::move(value));
  }
  void Update() override { m_rows->Update(); }
  void Close() override { m_rows->Close(); }

 private:
  std::unique_ptr<engine::Recordset> m_rows;
};

// OpenRecordset is left to the derived class, which decides how the rows are wrapped.
class PassThroughDatabase : public engine::Database {
 public:
  explicit PassThroughDatabase(std::unique_ptr<engine::Database> database)
      : m_database(std::move(database)) {}
  std::int64_t Execute(std::string_view sql, int options) override {
    return m_database->Execute(sql, options);
  }
  std::string QueryText(std::string_view name) override { return m_database->QueryText(name); }
  void CreateQueryDef(std::string_view name, std::string_view sql) override {
    m_database->CreateQueryDef(name, sql);
  }
  void DeleteQueryDef(std::string_view name) override { m_database->DeleteQueryDef(name); }
  void BeginTrans() override { m_database->BeginTrans(); }
  void CommitTrans() override { m_database->CommitTrans(); }
  void Rollback() override { m_database->Rollback(); }
  void Close() override { m_database->Close(); }

 protected:
  std::unique_ptr<engine::Database> m_database;
};

}  // namespace kxrestore::dialog_test
