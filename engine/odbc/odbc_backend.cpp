#include "engine/odbc/odbc_backend.h"

#include "engine/odbc/odbc_database.h"
#include "engine/odbc/odbc_session.h"
#include "engine/warm_sessions.h"

namespace kxrestore::engine::odbc {
namespace {

class OdbcBackend final : public WarmSessions<Session> {
 public:
  explicit OdbcBackend(const Waits& waits) : m_waits(waits) {}

  std::unique_ptr<Database> Open(const OpenRequest& request) override {
    if (!InAction()) {
      return std::make_unique<OdbcDatabase>(
          std::make_shared<Session>(request.connect, nullptr, WaitingOfSessions(), m_waits),
          request.readOnly);
    }
    // A lost session is dropped once it has reported its lost changes; this operation reconnects.
    Drop([](const Session& session) { return session.IsLost() && !session.HasUnreported(); });
    const auto fits = [&](const Session& session) {
      return session.Connect() == request.connect && !session.IsLost();
    };
    const auto make = [&] {
      if (!m_action) m_action = std::make_shared<ActionState>(m_waits.locks);
      return std::make_shared<Session>(request.connect, m_action, WaitingOfSessions(), m_waits);
    };
    return std::make_unique<OdbcDatabase>(Find(fits, make), request.readOnly);
  }

  void EndAction() override {
    m_action.reset();
    WarmSessions::EndAction();
  }

 private:
  Waits m_waits;
  std::shared_ptr<ActionState> m_action;  // from the first session of the action on
};

}  // namespace

std::unique_ptr<Backend> MakeOdbcBackend(const Waits& waits) {
  return std::make_unique<OdbcBackend>(waits);
}

}  // namespace kxrestore::engine::odbc
