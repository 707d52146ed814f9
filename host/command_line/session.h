// One run of the command line on one catalog: opening it, stopping, telling how far a walk is.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "base/error.h"
#include "catalog/connection.h"
#include "engine/database.h"
#include "host/command_line/host.h"
#include "host/command_line/options.h"

namespace kxrestore::cli {

// Everything that happens in a session is one user action for the engine: marks are gathered and committed at
// the latest every 100 ms, and by Finish.
class Session {
 public:
  // Asks for the password when one is needed. Raises UsageError when it cannot be had.
  Session(Host& sessionHost, const Options& options);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  Host& host;
  const std::unique_ptr<engine::Workspace> workspace;
  catalog::ConnectionSettings connection;

  std::unique_ptr<engine::Database> OpenCatalog() { return catalog::OpenCatalog(*workspace, connection); }

  // Before each row of a walk: lets waiting marks be committed and shows how far it is. False when Ctrl+C was
  // pressed.
  bool Next();
  // Takes an error of a commit on the way; without it the walk ends with the error.
  std::function<void(const Error& error)> onCommitError;
  bool Stopped() const { return m_stopped; }

  // Commits what waits; raises what the commit has to say.
  void Finish();

  // How far a step of its own kind is; shown like the progress of a walk.
  void ShowStep(const std::string& text);
  // A line for the user, on the error stream.
  void Say(std::string_view line);

 private:
  using Clock = std::chrono::steady_clock;
  void ShowProgress();
  void ClearProgress();
  bool LookForStop() { return m_stopped = m_stopped || host.stopped(); }

  bool m_inAction = false;
  bool m_stopped = false;
  std::size_t m_rows = 0;
  std::size_t m_shownWidth = 0;
  Clock::time_point m_nextProgress;
};

}  // namespace kxrestore::cli
