#include "engine/jet_file/jet_file_backend.h"

#include "engine/jet_file/jet_database.h"
#include "engine/warm_sessions.h"

namespace kxrestore::engine::jet_file {
namespace {

class JetSession final : public sqlite::Session {
 public:
  JetSession(const OpenRequest& request, bool grouping, std::chrono::milliseconds patience,
             std::shared_ptr<const Waiting> waiting, std::shared_ptr<JetTables> tables)
      : Session(request.name, request.exclusive, grouping, patience, std::move(waiting), tables),
        m_tables(std::move(tables)) {}

  const std::shared_ptr<JetTables>& Tables() const { return m_tables; }

 private:
  std::shared_ptr<JetTables> m_tables;
};

class JetFileBackend final : public WarmSessions<JetSession> {
 public:
  explicit JetFileBackend(std::chrono::milliseconds patience) : m_patience(patience) {}

  std::unique_ptr<Database> Open(const OpenRequest& request) override {
    const bool shared = InAction() && !request.exclusive;
    const auto make = [&] {
      return std::make_shared<JetSession>(
          request, shared, m_patience, WaitingOfSessions(),
          std::make_shared<JetTables>(request.name, request.exclusive, m_patience));
    };
    const auto fits = [&](const JetSession& session) { return session.Place() == request.name; };
    const std::shared_ptr<JetSession> session = shared ? Find(fits, make) : make();
    return std::make_unique<JetDatabase>(session, session->Tables(), request.readOnly);
  }

 private:
  std::chrono::milliseconds m_patience;
};

}  // namespace

std::unique_ptr<Backend> MakeJetFileBackend(std::chrono::milliseconds patience) {
  return std::make_unique<JetFileBackend>(patience);
}

}  // namespace kxrestore::engine::jet_file
