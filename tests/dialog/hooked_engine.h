// An engine that forwards every call to another one and calls a hook before and after it.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "engine/database.h"

namespace kxrestore::dialog_test {

struct EngineHooks {
  // Both are given the name of the call: "open catalog", "snapshot SQL", "dynaset SQL", "execute SQL",
  // "next row", "write row", "close rows", "close catalog", "flush" or "commit". A call is not made when
  // `before` throws.
  std::function<void(const std::string& call)> before = [](const std::string&) {};
  std::function<void(const std::string& call)> after = [](const std::string&) {};
  // Whether to forward what depends on the clock: group commits, and pending messages during a statement.
  bool mindsTime = true;
};

// An object of the engine behind the same interface, with hooks around its calls.
template <class Interface>
class Hooked : public Interface {
 public:
  Hooked(const EngineHooks& hooks, std::unique_ptr<Interface> real)
      : m_hooks(hooks), m_real(std::move(real)) {}

 protected:
  template <class Call>
  auto Around(const std::string& name, Call call) const {
    m_hooks.before(name);
    if constexpr (std::is_void_v<decltype(call())>) {
      call();
      m_hooks.after(name);
    } else {
      auto result = call();
      m_hooks.after(name);
      return result;
    }
  }

  const EngineHooks& m_hooks;
  std::unique_ptr<Interface> m_real;
};

class HookedRecordset : public Hooked<engine::Recordset> {
 public:
  using Hooked::Hooked;
  bool Eof() const override { return m_real->Eof(); }
  void MoveNext() override {
    Around("next row", [&] { m_real->MoveNext(); });
  }
  std::size_t FieldCount() const override { return m_real->FieldCount(); }
  std::string_view FieldName(std::size_t index) const override { return m_real->FieldName(index); }
  engine::ValueView FieldValue(std::size_t index) const override { return m_real->FieldValue(index); }
  void Edit() override { m_real->Edit(); }
  void SetFieldValue(std::size_t index, engine::Value value) override {
    m_real->SetFieldValue(index, std::move(value));
  }
  void Update() override {
    Around("write row", [&] { m_real->Update(); });
  }
  void Close() override {
    Around("close rows", [&] { m_real->Close(); });
  }
};

class HookedDatabase : public Hooked<engine::Database> {
 public:
  using Hooked::Hooked;
  std::unique_ptr<engine::Recordset> OpenRecordset(const engine::Sql& source, engine::RecordsetType type,
                                                   const engine::ColumnNames& read) override {
    const char* const kind = type == engine::RecordsetType::kSnapshot ? "snapshot " : "dynaset ";
    return std::make_unique<HookedRecordset>(
        m_hooks, Around(kind + source.Printed(), [&] { return m_real->OpenRecordset(source, type, read); }));
  }
  std::int64_t Execute(const engine::Sql& sql, int options) override {
    return Around("execute " + sql.Printed(), [&] { return m_real->Execute(sql, options); });
  }
  std::string QueryText(std::string_view name) override { return m_real->QueryText(name); }
  void CreateQueryDef(std::string_view name, std::string_view sql) override {
    m_real->CreateQueryDef(name, sql);
  }
  void DeleteQueryDef(std::string_view name) override { m_real->DeleteQueryDef(name); }
  void BeginTrans() override { m_real->BeginTrans(); }
  void CommitTrans() override { m_real->CommitTrans(); }
  void Rollback() override { m_real->Rollback(); }
  void Close() override {
    Around("close catalog", [&] { m_real->Close(); });
  }
};

class HookedBackend : public Hooked<engine::Backend> {
 public:
  using Hooked::Hooked;
  std::unique_ptr<engine::Database> Open(const engine::OpenRequest& request) override {
    return std::make_unique<HookedDatabase>(m_hooks,
                                            Around("open catalog", [&] { return m_real->Open(request); }));
  }
  void BeginAction() override { m_real->BeginAction(); }
  void Idle() override {
    if (m_hooks.mindsTime) m_real->Idle();
  }
  void Flush() override {
    Around("flush", [&] { m_real->Flush(); });
  }
  void EndAction() override {
    Around("commit", [&] { m_real->EndAction(); });
  }
  void SetWaiting(const engine::Waiting& waiting) override {
    if (m_hooks.mindsTime) m_real->SetWaiting(waiting);
  }
  engine::CommitCounts Commits() const override { return m_real->Commits(); }
};

// A workspace for files over a hooked engine. The hooks must outlive it.
inline std::unique_ptr<engine::Workspace> MakeHookedWorkspace(const EngineHooks& hooks,
                                                              std::unique_ptr<engine::Backend> backend) {
  engine::Workspace::Backends backends;
  backends.sqlite = std::make_unique<HookedBackend>(hooks, std::move(backend));
  return std::make_unique<engine::Workspace>(std::move(backends));
}

}  // namespace kxrestore::dialog_test
