#include "engine/dao/dao_backend.h"

#include <utility>
#include <vector>

#include "engine/dao/dao_recordset.h"
#include "engine/dao/desktop_engine.h"
#include "engine/session_database.h"

namespace kxrestore::engine::dao {
namespace {

class DaoDatabase final : public SessionDatabase<Session> {
 public:
  // A database opened for reading is protected by the engine alone.
  explicit DaoDatabase(std::shared_ptr<Session> session) : SessionDatabase(std::move(session), false) {}

  std::unique_ptr<Recordset> OpenRecordset(const Sql& source, RecordsetType type,
                                           const ColumnNames& /*read*/) override {
    return std::make_unique<DaoRecordset>(Open(), source.Printed(), type);
  }

  std::int64_t Execute(const Sql& sql, int options) override {
    Session& session = *Open();
    const Object& database = session.Dao();
    database.Call(L"Execute", Variant(sql.Printed()), Variant(static_cast<std::int32_t>(options)));
    const std::int64_t changed = database.Get(L"RecordsAffected").Integer();
    if (changed != 0) session.Engine().HasWritten();
    return changed;
  }

  std::string QueryText(std::string_view name) override {
    return Open()->Dao().GetObject(L"QueryDefs").Item(Variant(name)).Get(L"SQL").Text();
  }

  void CreateQueryDef(std::string_view name, std::string_view sql) override {
    Session& session = *Open();
    session.Dao().CallForObject(L"CreateQueryDef", Variant(name), Variant(sql));
    session.Engine().HasWritten();
  }

  void DeleteQueryDef(std::string_view name) override {
    Session& session = *Open();
    session.Dao().GetObject(L"QueryDefs").Call(L"Delete", Variant(name));
    session.Engine().HasWritten();
  }
};

// The engine and its open databases are kept within one user action only: the thread's owner may uninitialise
// COM between two.
class DaoBackend final : public Backend {
 public:
  std::unique_ptr<Database> Open(const OpenRequest& request) override {
    for (const auto& session : m_warm) {
      if (session->IsFor(request)) return std::make_unique<DaoDatabase>(session);
    }
    std::shared_ptr<DesktopEngine> engine =
        m_engine ? m_engine : std::make_shared<DesktopEngine>(request.name);
    engine->Gather(m_inAction);
    auto session = std::make_shared<Session>(engine, request);
    if (m_inAction) {
      m_engine = std::move(engine);
      if (!request.exclusive) m_warm.push_back(session);
    }
    return std::make_unique<DaoDatabase>(std::move(session));
  }

  bool IsInstalled() const override { return DesktopEngine::IsInstalled(); }

  void BeginAction() override { m_inAction = true; }
  void Idle() override { WriteOutAfter(std::chrono::milliseconds(100)); }
  void Flush() override { WriteOutAfter(std::chrono::milliseconds(0)); }

  void EndAction() override {
    m_inAction = false;
    const auto engine = std::exchange(m_engine, nullptr);
    const auto warm = std::exchange(m_warm, {});
    if (!engine) return;
    engine->Gather(false);
    engine->WriteOutAfter(std::chrono::milliseconds(0));
  }

 private:
  void WriteOutAfter(std::chrono::milliseconds age) {
    if (m_engine) m_engine->WriteOutAfter(age);
  }

  bool m_inAction = false;
  std::shared_ptr<DesktopEngine> m_engine;
  std::vector<std::shared_ptr<Session>> m_warm;
};

}  // namespace

std::unique_ptr<Backend> MakeDaoBackend() {
  return std::make_unique<DaoBackend>();
}

}  // namespace kxrestore::engine::dao
