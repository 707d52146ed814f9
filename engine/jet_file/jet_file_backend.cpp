#include "engine/jet_file/jet_file_backend.h"

#include "engine/jet_file/jet_database.h"
#include "engine/warm_sessions.h"

namespace kxrestore::engine::jet_file {
namespace {

class JetSession final : public sqlite::Session {
 public:
  JetSession(const OpenRequest& request, bool grouping, const std::shared_ptr<sqlite::Waiter>& waiter,
             std::shared_ptr<JetTables> tables)
      : Session(request.name, request.exclusive, grouping, waiter, tables), m_tables(std::move(tables)) {}

  const std::shared_ptr<JetTables>& Tables() const { return m_tables; }

 private:
  std::shared_ptr<JetTables> m_tables;
};

class JetFileBackend final : public WarmSessions<JetSession> {
 public:
  explicit JetFileBackend(std::chrono::milliseconds lockTimeout)
      : m_waiter(std::make_shared<sqlite::Waiter>(lockTimeout, WaitingOfSessions())) {}

  std::unique_ptr<Database> Open(const OpenRequest& request) override {
    const bool shared = InAction() && !request.exclusive;
    const auto make = [&] {
      return std::make_shared<JetSession>(
          request, shared, m_waiter, std::make_shared<JetTables>(request.name, request.exclusive, m_waiter));
    };
    const auto fits = [&](const JetSession& session) { return session.Place() == request.name; };
    const std::shared_ptr<JetSession> session = shared ? Find(fits, make) : make();
    return std::make_unique<JetDatabase>(session, session->Tables(), request.readOnly);
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
  std::shared_ptr<sqlite::Waiter> m_waiter;
};

}  // namespace

std::unique_ptr<Backend> MakeJetFileBackend(std::chrono::milliseconds lockTimeout) {
  return std::make_unique<JetFileBackend>(lockTimeout);
}

}  // namespace kxrestore::engine::jet_file
