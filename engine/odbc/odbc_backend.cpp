#include "engine/odbc/odbc_backend.h"

#include <exception>
#include <map>
#include <string>
#include <vector>

#include "engine/odbc/odbc_database.h"
#include "engine/odbc/odbc_session.h"

namespace kxrestore::engine::odbc {
namespace {

class OdbcBackend final : public Backend {
 public:
  std::unique_ptr<Database> Open(const OpenRequest& request) override {
    if (!m_inAction) {
      auto session = std::make_shared<Session>(request.connect, false, nullptr);
      return std::make_unique<OdbcDatabase>(std::move(session), request.readOnly);
    }
    // A session whose server went away is let go; the next operation tries again.
    std::erase_if(m_warm, [](const auto& session) { return session->IsLost(); });
    for (const auto& session : m_warm) {
      if (session->Connect() == request.connect) {
        return std::make_unique<OdbcDatabase>(session, request.readOnly);
      }
    }
    auto& texts = m_texts[request.connect];
    if (!texts) texts = std::make_shared<SavedTexts>();
    m_warm.push_back(std::make_shared<Session>(request.connect, true, texts));
    return std::make_unique<OdbcDatabase>(m_warm.back(), request.readOnly);
  }

  void BeginAction() override { m_inAction = true; }

  void Idle() override {
    ForEach(m_warm, [](Session& session) { session.Idle(); });
  }

  void Flush() override {
    ForEach(m_warm, [](Session& session) { session.Flush(); });
  }

  void EndAction() override {
    m_inAction = false;
    const std::vector<std::shared_ptr<Session>> sessions = std::move(m_warm);
    m_warm.clear();
    m_texts.clear();
    ForEach(sessions, [](Session& session) { session.EndGroups(); });
  }

 private:
  // Every session gets its turn; the first error is raised at the end.
  template <typename Operation>
  static void ForEach(const std::vector<std::shared_ptr<Session>>& sessions, Operation operation) {
    std::exception_ptr failure;
    for (const auto& session : sessions) {
      try {
        operation(*session);
      } catch (...) {
        if (!failure) failure = std::current_exception();
      }
    }
    if (failure) std::rethrow_exception(failure);
  }

  std::vector<std::shared_ptr<Session>> m_warm;
  std::map<std::string, std::shared_ptr<SavedTexts>>
      m_texts;  // of this action's saved queries, by connection
  bool m_inAction = false;
};

}  // namespace

std::unique_ptr<Backend> MakeOdbcBackend() {
  return std::make_unique<OdbcBackend>();
}

}  // namespace kxrestore::engine::odbc
