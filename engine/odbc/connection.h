// A connection to a server. All its driver calls are made on one dedicated thread, see DriverThread. When a
// call has to be abandoned, the connection is lost, and that thread frees what the call used once it returns.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/odbc/driver.h"
#include "engine/odbc/driver_thread.h"
#include "engine/odbc/statement_data.h"
#include "engine/odbc/waits.h"

namespace kxrestore::engine::odbc {

// State used on the connection's thread.
struct DriverHandles {
  EnvironmentHandle environment;
  ConnectionHandle connection;
  std::vector<std::shared_ptr<StatementData>> statements;
  bool isConnected = false;
  bool commitsManually = false;   // autocommit is off
  std::atomic<bool> lost{false};  // the server is gone; no further calls are made

  void Tidy() noexcept;
  // Rolls back what is not committed.
  void Close() noexcept;
};

class Connection {
 public:
  // Connects. `connect` is a host's connect string, with or without "ODBC;". `waiting` is the waiting
  // callback or null. Errors: 3151 with the driver's message, 3059 when the callback requests a stop.
  Connection(std::string_view connect, const Waits& waits, std::shared_ptr<const Waiting> waiting);

  using Call = std::function<Outcome(DriverHandles& handles)>;
  // Makes a call, which owns the data that it uses. When the callback requests a stop, `stoppable` (if given)
  // is canceled; a call that succeeds nevertheless counts as done. Errors: 3059 after a stop, 3146 when the
  // call exceeds its time limit or the connection is lost. A driver's error is returned in the outcome.
  Outcome Run(Call call, const std::shared_ptr<StatementData>& stoppable = nullptr);

  // Switches autocommit. A connection that refuses is lost, because its commit state is unknown.
  Outcome SetAutocommit(bool on);
  // Ends the transaction and switches autocommit on.
  Outcome EndTransaction(bool commit);

  // Makes the thread close cursors and free statements now, not before the next call.
  void Tidy() noexcept { m_thread.Wake(); }

  // Whether a transaction may be open.
  bool InTransaction() const { return !IsLost() && m_handles->commitsManually; }
  bool IsLost() const { return m_handles->lost; }
  void GiveUp() { m_handles->lost = true; }
  // Error 3146 for a lost connection, with the message of the call that detected it.
  [[noreturn]] void RaiseLost() const;
  const std::string& Server() const { return m_server; }  // for messages
  const Password& PasswordToHide() const { return *m_password; }

  // See DriverThread. Error 3059 when the callback requests a stop.
  void GiveTurn();
  void Pause(std::chrono::milliseconds time);

 private:
  Outcome RunWithin(Call call, const DriverThread::Limits& limits, bool isConnecting);

  std::string m_server;
  std::string m_lossMessage;  // the message, once the loss has been reported
  Waits m_waits;
  std::shared_ptr<const Password> m_password;
  std::shared_ptr<DriverHandles> m_handles;
  DriverThread m_thread;
};

[[noreturn]] void RaiseCanceled();

}  // namespace kxrestore::engine::odbc
