#include "engine/sqlite/sqlite_backend.h"

#include "engine/sqlite/session.h"
#include "engine/sqlite/sqlite_database.h"
#include "engine/warm_sessions.h"

namespace kxrestore::engine::sqlite {
namespace {

class SqliteBackend final : public WarmSessions<Session> {
 public:
  explicit SqliteBackend(std::chrono::milliseconds lockTimeout)
      : m_waiter(std::make_shared<Waiter>(lockTimeout, WaitingOfSessions())) {}

  std::unique_ptr<Database> Open(const OpenRequest& request) override {
    const bool shared = InAction() && !request.exclusive;
    const auto make = [&] {
      return std::make_shared<Session>(request.name, request.exclusive, shared, m_waiter);
    };
    const auto fits = [&](const Session& session) { return session.Place() == request.name; };
    return std::make_unique<SqliteDatabase>(shared ? Find(fits, make) : make(), request.readOnly);
  }

  void BeginAction() override {
    WarmSessions::BeginAction();
    m_waiter->BeginAction();
  }

  void EndAction() override {
    Failures failures;
    failures.Try([this] { WarmSessions::EndAction(); });
    m_waiter->EndAction();  // the last commits were part of the action
    failures.Raise();
  }

 private:
  std::shared_ptr<Waiter> m_waiter;
};

}  // namespace

std::unique_ptr<Backend> MakeSqliteBackend(std::chrono::milliseconds lockTimeout) {
  return std::make_unique<SqliteBackend>(lockTimeout);
}

}  // namespace kxrestore::engine::sqlite
