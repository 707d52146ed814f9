#include "engine/sqlite/sqlite_backend.h"

#include "engine/sqlite/session.h"
#include "engine/sqlite/sqlite_database.h"
#include "engine/warm_sessions.h"

namespace kxrestore::engine::sqlite {
namespace {

class SqliteBackend final : public WarmSessions<Session> {
 public:
  explicit SqliteBackend(std::chrono::milliseconds patience) : m_patience(patience) {}

  std::unique_ptr<Database> Open(const OpenRequest& request) override {
    const bool shared = InAction() && !request.exclusive;
    const auto make = [&] {
      return std::make_shared<Session>(request.name, request.exclusive, shared, m_patience,
                                       WaitingOfSessions());
    };
    const auto fits = [&](const Session& session) { return session.Place() == request.name; };
    return std::make_unique<SqliteDatabase>(shared ? Find(fits, make) : make(), request.readOnly);
  }

 private:
  std::chrono::milliseconds m_patience;
};

}  // namespace

std::unique_ptr<Backend> MakeSqliteBackend(std::chrono::milliseconds patience) {
  return std::make_unique<SqliteBackend>(patience);
}

}  // namespace kxrestore::engine::sqlite
