// An engine that hands every call on to another one, with a hook before and after it.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "engine/database.h"

namespace kxrestore::dialog_test {

struct EngineHooks {
  // `call` is "open catalog", "snapshot SQL", "dynaset SQL", "execute SQL", "next row", "row written", "close
  // rows", "close catalog", "flush" or "commit". What `before` raises takes the place of the call.
  std::function<void(const std::string& call)> before = [](const std::string&) {};
  std::function<void(const std::string& call)> after = [](const std::string&) {};
  // Whether the engine commits by the clock and has turns; how often depends on the machine.
  bool mindsTime = true;

  template <class Call>
  auto Around(const std::string& call, Call make) const {
    before(call);
    if constexpr (std::is_void_v<decltype(make())>) {
      make();
      after(call);
    } else {
      auto result = make();
      after(call);
      return result;
    }
  }
};

class HookedRecordset : public engine::Recordset {
 public:
  HookedRecordset(const EngineHooks& hooks, std::unique_ptr<engine::Recordset> rows)
      : m_hooks(hooks), m_rows(std::move(rows)) {}
  bool Eof() const override { return m_rows->Eof(); }
  void MoveNext() override {
    m_hooks.Around("next row", [&] { m_rows->MoveNext(); });
  }
  std::size_t FieldCount() const override { return m_rows->FieldCount(); }
  std::string_view FieldName(std::size_t index) const override { return m_rows->FieldName(index); }
  engine::ValueView FieldValue(std::size_t index) const override { return m_rows->FieldValue(index); }
  void Edit() override { m_rows->Edit(); }
  void SetFieldValue(std::size_t index, engine::Value value) override {
    m_rows->SetFieldValue(index, std::move(value));
  }
  void Update() override {
    m_hooks.Around("row written", [&] { m_rows->Update(); });
  }
  void Close() override {
    m_hooks.Around("close rows", [&] { m_rows->Close(); });
  }

 private:
  const EngineHooks& m_hooks;
  std::unique_ptr<engine::Recordset> m_rows;
};

class HookedDatabase : public engine::Database {
 public:
  HookedDatabase(const EngineHooks& hooks, std::unique_ptr<engine::Database> database)
      : m_hooks(hooks), m_database(std::move(database)) {}
  std::unique_ptr<engine::Recordset> OpenRecordset(std::string_view source, engine::RecordsetType type,
                                                   const engine::ColumnNames& read) override {
    const char* const kind = type == engine::RecordsetType::kSnapshot ? "snapshot " : "dynaset ";
    return std::make_unique<HookedRecordset>(m_hooks, m_hooks.Around(kind + std::string(source), [&] {
      return m_database->OpenRecordset(source, type, read);
    }));
  }
  std::int64_t Execute(std::string_view sql, int options) override {
    return m_hooks.Around("execute " + std::string(sql), [&] { return m_database->Execute(sql, options); });
  }
  std::string QueryText(std::string_view name) override { return m_database->QueryText(name); }
  void CreateQueryDef(std::string_view name, std::string_view sql) override {
    m_database->CreateQueryDef(name, sql);
  }
  void DeleteQueryDef(std::string_view name) override { m_database->DeleteQueryDef(name); }
  void BeginTrans() override { m_database->BeginTrans(); }
  void CommitTrans() override { m_database->CommitTrans(); }
  void Rollback() override { m_database->Rollback(); }
  void Close() override {
    m_hooks.Around("close catalog", [&] { m_database->Close(); });
  }

 private:
  const EngineHooks& m_hooks;
  std::unique_ptr<engine::Database> m_database;
};

class HookedBackend : public engine::Backend {
 public:
  HookedBackend(const EngineHooks& hooks, std::unique_ptr<engine::Backend> backend)
      : m_hooks(hooks), m_backend(std::move(backend)) {}
  std::unique_ptr<engine::Database> Open(const engine::OpenRequest& request) override {
    return std::make_unique<HookedDatabase>(
        m_hooks, m_hooks.Around("open catalog", [&] { return m_backend->Open(request); }));
  }
  void BeginAction() override { m_backend->BeginAction(); }
  void Idle() override {
    if (m_hooks.mindsTime) m_backend->Idle();
  }
  void Flush() override {
    m_hooks.Around("flush", [&] { m_backend->Flush(); });
  }
  void EndAction() override {
    m_hooks.Around("commit", [&] { m_backend->EndAction(); });
  }
  void SetWaiting(const engine::Waiting& waiting) override {
    if (m_hooks.mindsTime) m_backend->SetWaiting(waiting);
  }
  engine::CommitCounts Commits() const override { return m_backend->Commits(); }

 private:
  const EngineHooks& m_hooks;
  std::unique_ptr<engine::Backend> m_backend;
};

// A workspace for files over a hooked engine; the hooks outlive it.
inline std::unique_ptr<engine::Workspace> MakeHookedWorkspace(const EngineHooks& hooks,
                                                              std::unique_ptr<engine::Backend> backend) {
  engine::Workspace::Backends backends;
  backends.sqlite = std::make_unique<HookedBackend>(hooks, std::move(backend));
  return std::make_unique<engine::Workspace>(std::move(backends));
}

}  // namespace kxrestore::dialog_test
