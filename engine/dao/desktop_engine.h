// The running desktop engine and the databases that are open in it.
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
  // The newest engine that is installed and can be made; error 429 when there is none. `file` is who asks.
  explicit DesktopEngine(const std::string& file);

  // Whether any of them can be had for programs of this bitness.
  static bool IsInstalled();

  const Object& DefaultWorkspace() const { return m_workspace; }

  // The engine writes behind by itself, within half a second. While it gathers it is left to do so, else
  // every write is followed by its "write it now".
  void Gather(bool gather) { m_gather = gather; }
  void HasWritten();
  void WriteOutAfter(std::chrono::milliseconds age);

  // A transaction is the workspace's, so there is one at a time for all its databases.
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

// An open database. Whoever holds it keeps it open, so that a recordset may outlive what it was opened from.
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
