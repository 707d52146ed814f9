#include "engine/sqlite/sqlite_backend.h"

#include "engine/sqlite/session.h"
#include "engine/sqlite/sqlite_database.h"
#include "engine/warm_sessions.h"

namespace kxrestore::engine::sqlite {
namespace {

class SqliteBackend final : public WarmSessions<Session> {
 public:
  explicit SqliteBackend(std::chrono::milliseconds patience)
      : m_waiter(std::make_shared<Waiter>(patience, WaitingOfSessions())) {}

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
    const ActionEnd end{*m_waiter};  // the last commits still belong to the action
    WarmSessions::EndAction();
  }

 private:
  struct ActionEnd {
    Waiter& waiter;
    ~ActionEnd() { waiter.EndAction(); }
  };

  std::shared_ptr<Waiter> m_waiter;
};

}  // namespace

std::unique_ptr<Backend> MakeSqliteBackend(std::chrono::milliseconds patience) {
  return std::make_unique<SqliteBackend>(patience);
}

}  // namespace kxrestore::engine::sqlite
