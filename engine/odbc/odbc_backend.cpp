#include "engine/odbc/odbc_backend.h"

#include <map>
#include <string>

#include "engine/odbc/odbc_database.h"
#include "engine/odbc/odbc_session.h"
#include "engine/warm_sessions.h"

namespace kxrestore::engine::odbc {
namespace {

class OdbcBackend final : public WarmSessions<Session> {
 public:
  std::unique_ptr<Database> Open(const OpenRequest& request) override {
    if (!InAction()) {
      return std::make_unique<OdbcDatabase>(
          std::make_shared<Session>(request.connect, false, nullptr, WaitingOfSessions()), request.readOnly);
    }
    // A session whose server went away is let go; the next operation tries again.
    Drop([](const Session& session) { return session.IsLost(); });
    const auto fits = [&](const Session& session) { return session.Connect() == request.connect; };
    const auto make = [&] {
      auto& texts = m_texts[request.connect];
      if (!texts) texts = std::make_shared<SavedTexts>();
      return std::make_shared<Session>(request.connect, true, texts, WaitingOfSessions());
    };
    return std::make_unique<OdbcDatabase>(Find(fits, make), request.readOnly);
  }

  void EndAction() override {
    m_texts.clear();
    WarmSessions::EndAction();
  }

 private:
  // Of this action's saved queries, by connection.
  std::map<std::string, std::shared_ptr<SavedTexts>> m_texts;
};

}  // namespace

std::unique_ptr<Backend> MakeOdbcBackend() {
  return std::make_unique<OdbcBackend>();
}

}  // namespace kxrestore::engine::odbc
