// The sessions that a back end of this program's own keeps warm within one user action. A Session gathers
// updates: Idle commits what has waited long enough, Flush commits everything, EndGroups commits for good,
// Commits tells what became of its groups.
#pragma once

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "engine/database.h"
#include "engine/failures.h"

namespace kxrestore::engine {

template <class Session>
class WarmSessions : public Backend {
 public:
  void BeginAction() override { m_inAction = true; }

  void Idle() override {
    ForEach(m_warm, [](Session& session) { session.Idle(); });
  }

  void Flush() override {
    ForEach(m_warm, [](Session& session) { session.Flush(); });
  }

  void EndAction() override {
    m_inAction = false;
    const std::vector<std::shared_ptr<Session>> sessions = std::exchange(m_warm, {});
    Failures failures;
    for (const auto& session : sessions) {
      failures.Try([&] { session->EndGroups(); });
      m_ended += session->Commits();
    }
    failures.Raise();
  }

  void SetWaiting(const Waiting& waiting) override { *m_waiting = waiting; }

  CommitCounts Commits() const override {
    CommitCounts counts = m_ended;
    for (const auto& session : m_warm) counts += session->Commits();
    return counts;
  }

 protected:
  bool InAction() const { return m_inAction; }

  // The warm session that `fits`, or one that `make` makes.
  template <class Fits, class Make>
  std::shared_ptr<Session> Find(Fits fits, Make make) {
    const auto found =
        std::find_if(m_warm.begin(), m_warm.end(), [&](const auto& session) { return fits(*session); });
    if (found != m_warm.end()) return *found;
    m_warm.push_back(make());
    return m_warm.back();
  }

  template <class Condition>
  void Drop(Condition condition) {
    std::erase_if(m_warm, [&](const auto& session) {
      if (!condition(*session)) return false;
      m_ended += session->Commits();
      return true;
    });
  }

  // What to do while a statement takes long; sessions may live longer than the back end.
  std::shared_ptr<const Waiting> WaitingOfSessions() const { return m_waiting; }

 private:
  template <class Operation>
  static void ForEach(const std::vector<std::shared_ptr<Session>>& sessions, Operation operation) {
    Failures failures;
    for (const auto& session : sessions) failures.Try([&] { operation(*session); });
    failures.Raise();
  }

  std::vector<std::shared_ptr<Session>> m_warm;
  CommitCounts m_ended;  // of sessions that are gone
  bool m_inAction = false;
  std::shared_ptr<Waiting> m_waiting = std::make_shared<Waiting>();
};

}  // namespace kxrestore::engine
