// The running desktop engine and its open databases.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "engine/dao/automation.h"
#include "engine/database.h"

namespace kxrestore::engine::dao {

class DesktopEngine {
 public:
  // The newest version that is installed and can be created; error 429 when there is none, naming `file`.
  explicit DesktopEngine(const std::string& file);

  // Whether any version exists for programs of this bitness.
  static bool IsInstalled();

  const Object& DefaultWorkspace() const { return m_workspace; }

  // The engine writes in the background, within half a second. During a group of updates that is left to it;
  // otherwise every write is followed by an explicit flush.
  void Gather(bool gather) { m_gather = gather; }
  void HasWritten();
  void WriteOutAfter(std::chrono::milliseconds age);

  // A transaction belongs to the workspace, so there is one at a time for all its databases.
  void BeginTransaction(const Database& owner);
  void CommitTransaction();
  void UndoTransaction();
  const Database* TransactionOwner() const { return m_transactionOwner; }

 private:
  using Clock = std::chrono::steady_clock;

  Object m_engine;
  Object m_workspace;
  const Database* m_transactionOwner = nullptr;
  bool m_gather = false;
  std::optional<Clock::time_point> m_firstUnwritten;
};

// An open database, shared so that a recordset may outlive the object it was opened from.
class Session {
 public:
  Session(std::shared_ptr<DesktopEngine> engine, const OpenRequest& request);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  DesktopEngine& Engine() const { return *m_engine; }
  const Object& Dao() const { return m_database; }
  bool IsFor(const OpenRequest& request) const;
  const std::string& Place() const { return m_request.name; }

  void BeginTransaction(const Database& owner) { m_engine->BeginTransaction(owner); }
  void CommitTransaction() { m_engine->CommitTransaction(); }
  void UndoTransaction() { m_engine->UndoTransaction(); }
  const Database* TransactionOwner() const { return m_engine->TransactionOwner(); }

 private:
  std::shared_ptr<DesktopEngine> m_engine;
  OpenRequest m_request;
  Object m_database;
};

}  // namespace kxrestore::engine::dao
