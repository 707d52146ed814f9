#include "engine/sqlite/sqlite_backend.h"

#include <exception>
#include <string>
#include <vector>

#include "engine/sqlite/session.h"
#include "engine/sqlite/sqlite_database.h"

namespace kxrestore::engine::sqlite {
namespace {

class SqliteBackend final : public Backend {
 public:
  explicit SqliteBackend(std::chrono::milliseconds patience) : m_patience(patience) {}

  std::unique_ptr<Database> Open(const OpenRequest& request) override {
    if (request.exclusive || !m_inAction) {
      auto session = std::make_shared<Session>(request.name, request.exclusive, false, m_patience, m_waiting);
      return std::make_unique<SqliteDatabase>(std::move(session), request.readOnly);
    }
    for (const auto& session : m_warm) {
      if (session->File() == request.name) return std::make_unique<SqliteDatabase>(session, request.readOnly);
    }
    m_warm.push_back(std::make_shared<Session>(request.name, false, true, m_patience, m_waiting));
    return std::make_unique<SqliteDatabase>(m_warm.back(), request.readOnly);
  }

  void BeginAction() override { m_inAction = true; }

  void Idle() override {
    for (const auto& session : m_warm) session->Idle();
  }

  void Flush() override {
    ForEach(m_warm, [](Session& session) { session.Flush(); });
  }

  void EndAction() override {
    m_inAction = false;
    const std::vector<std::shared_ptr<Session>> sessions = std::move(m_warm);
    m_warm.clear();
    ForEach(sessions, [](Session& session) { session.EndGroups(); });
  }

  void SetWaiting(const Waiting& waiting) override { *m_waiting = waiting; }

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
  bool m_inAction = false;
  std::chrono::milliseconds m_patience;
  std::shared_ptr<Waiting> m_waiting = std::make_shared<Waiting>();  // sessions may live longer
};

}  // namespace

std::unique_ptr<Backend> MakeSqliteBackend(std::chrono::milliseconds patience) {
  return std::make_unique<SqliteBackend>(patience);
}

}  // namespace kxrestore::engine::sqlite
