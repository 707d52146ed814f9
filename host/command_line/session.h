// One run of the command line on one catalog: opens it, reports progress, stops on Ctrl+C.
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

// A session is one user action for the engine: marks are committed in groups, at least every 100 ms, and by
// Finish.
class Session {
 public:
  // Asks for the password if one is needed. Raises UsageError when there is no way to ask.
  Session(Host& sessionHost, const Options& options);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  Host& host;
  const std::unique_ptr<engine::Workspace> workspace;
  catalog::ConnectionSettings connection;

  [[nodiscard]] std::unique_ptr<engine::Database> OpenCatalog() {
    return catalog::OpenCatalog(*workspace, connection);
  }

  // Call before each row of a walk: commits marks that are due and shows progress. False when Ctrl+C was
  // pressed.
  [[nodiscard]] bool Next();
  // Handles the error of an intermediate commit; without a handler the error ends the walk.
  std::function<void(const Error& error)> onCommitError;
  bool Stopped() const { return m_stopped; }

  // Commits what is pending; raises the error of that commit.
  void Finish();

  // Shows the progress of a step that is not a walk over rows.
  void ShowStep(const std::string& text);
  // Prints a line for the user on the error stream.
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
