// A database that only records its calls, in order, and fails where a test has asked for it.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "base/error.h"
#include "engine/database.h"
#include "engine/error_numbers.h"

namespace kxrestore::catalog_test {

// The state that all databases of one test share.
struct Script {
  std::vector<std::string> calls;
  std::map<std::string, std::string> queries;    // saved queries, by name
  std::map<std::string, int> failures;           // error numbers by the start of a recorded call
  std::vector<std::string> columns;              // of every recordset
  std::vector<std::vector<engine::Value>> rows;  // changed by Update

  void Call(std::string call) {
    calls.push_back(std::move(call));
    for (const auto& [start, number] : failures) {
      if (calls.back().starts_with(start)) throw Error(number, "injected into " + start, "test");
    }
  }
};

class RecordingRecordset : public engine::Recordset {
 public:
  explicit RecordingRecordset(std::shared_ptr<Script> script) : m_script(std::move(script)) {}

  bool Eof() const override { return m_row >= m_script->rows.size(); }
  void MoveNext() override { ++m_row; }
  std::size_t FieldCount() const override { return m_script->columns.size(); }
  std::string_view FieldName(std::size_t index) const override { return m_script->columns[index]; }
  engine::ValueView FieldValue(std::size_t index) const override {
    return engine::ViewOf(m_script->rows[m_row][index]);
  }
  void Edit() override { m_script->Call("edit " + std::to_string(m_row)); }
  void SetFieldValue(std::size_t index, engine::Value value) override {
    m_change = {index, std::move(value)};
  }
  void Update() override {
    m_script->Call("update " + std::to_string(m_row));
    m_script->rows[m_row][m_change.first] = m_change.second;
  }
  void Close() override { m_script->Call("close recordset"); }

 private:
  std::shared_ptr<Script> m_script;
  std::size_t m_row = 0;
  std::pair<std::size_t, engine::Value> m_change;  // of the row's columns
};

class RecordingDatabase : public engine::Database {
 public:
  explicit RecordingDatabase(std::shared_ptr<Script> script) : m_script(std::move(script)) {}

  std::unique_ptr<engine::Recordset> OpenRecordset(const engine::Sql& source, engine::RecordsetType type,
                                                   const engine::ColumnNames& /*read*/) override {
    m_script->Call("open " + std::to_string(static_cast<int>(type)) + " " + source.Printed());
    return std::make_unique<RecordingRecordset>(m_script);
  }
  std::int64_t Execute(const engine::Sql& sql, int options) override {
    m_script->Call("execute " + std::to_string(options) + " " + sql.Printed());
    return 0;
  }
  std::string QueryText(std::string_view name) override { return Find(name)->second; }
  void CreateQueryDef(std::string_view name, std::string_view sql) override {
    m_script->Call("create " + std::string(name));
    m_script->queries[std::string(name)] = sql;
  }
  void DeleteQueryDef(std::string_view name) override {
    m_script->Call("delete " + std::string(name));
    m_script->queries.erase(Find(name));
  }
  void BeginTrans() override { m_script->Call("begin"); }
  void CommitTrans() override { m_script->Call("commit"); }
  void Rollback() override { m_script->Call("roll back"); }
  void Close() override { m_script->Call("close database"); }

 private:
  std::map<std::string, std::string>::iterator Find(std::string_view name) {
    const auto found = m_script->queries.find(std::string(name));
    if (found == m_script->queries.end()) engine::RaiseItemNotFound(name);
    return found;
  }

  std::shared_ptr<Script> m_script;
};

// Takes the place of the back end for servers.
class RecordingBackend : public engine::Backend {
 public:
  explicit RecordingBackend(std::shared_ptr<Script> script) : m_script(std::move(script)) {}
  std::unique_ptr<engine::Database> Open(const engine::OpenRequest& request) override {
    m_script->Call("connect " + request.name + "|" + request.connect);
    return std::make_unique<RecordingDatabase>(m_script);
  }
  void Idle() override {}
  void Flush() override {}
  void EndAction() override {}

 private:
  std::shared_ptr<Script> m_script;
};

}  // namespace kxrestore::catalog_test
