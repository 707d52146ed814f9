// A connection to a server. All calls of the driver for it are made on one thread of its own, see
// DriverThread; when one has to be given up, the connection is lost and that thread frees what the call used
// once it returns.
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

// What the thread of a connection works with.
struct DriverHandles {
  EnvironmentHandle environment;
  ConnectionHandle connection;
  std::vector<std::shared_ptr<StatementData>> statements;
  bool isConnected = false;
  bool commitsByHand = false;     // autocommit is off
  std::atomic<bool> lost{false};  // the server is gone; nothing more is asked of this connection

  void Tidy() noexcept;
  // Undoes what is not committed.
  void Close() noexcept;
};

class Connection {
 public:
  // Connects. `connect` is a connect string of hosts, with or without "ODBC;". `waiting`: the callback; may
  // be null. Errors: 3151 with the driver's words, 3059 when the callback asks for a stop.
  Connection(std::string_view connect, const Waits& waits, std::shared_ptr<const Waiting> waiting);

  using Call = std::function<Outcome(DriverHandles& handles)>;
  // Makes a call, which owns what it uses. When the callback asks for a stop, `stoppable`, if there is one,
  // is canceled; a call that ends with success in spite of it counts. Errors: 3059 after a stop, and 3146
  // when the call takes too long or the connection is lost. A driver's error is in the outcome.
  Outcome Run(Call call, const std::shared_ptr<StatementData>& stoppable = nullptr);

  // Switches autocommit. A connection that refuses is lost, since nobody knows what it commits.
  Outcome SetAutocommit(bool on);
  // Ends the transaction and switches autocommit on.
  Outcome EndTransaction(bool commit);

  // The thread closes the cursor or frees the statement. `atOnce`: without waiting for the next call.
  void Close(StatementData& statement, bool atOnce) noexcept;
  void Free(StatementData& statement, bool atOnce) noexcept;

  // Whether a transaction may be open, as far as anybody can know.
  bool InTransaction() const { return !IsLost() && m_handles->commitsByHand; }
  bool IsLost() const { return m_handles->lost; }
  void GiveUp() { m_handles->lost = true; }
  // Error 3146 for a lost connection, with the words of the call that met the loss.
  [[noreturn]] void RaiseLost() const;
  const std::string& Server() const { return m_server; }  // for messages
  const Password& PasswordToHide() const { return *m_password; }

  // See DriverThread. Error 3059 when the callback asks for a stop.
  void GiveTurn();
  void Pause(std::chrono::milliseconds time);

 private:
  Outcome RunWithin(Call call, const DriverThread::Limits& limits, bool isConnecting);

  std::string m_server;
  std::string m_lossWords;  // once it is lost and somebody has said why
  Waits m_waits;
  std::shared_ptr<const Password> m_password;
  std::shared_ptr<DriverHandles> m_handles;
  DriverThread m_thread;
};

[[noreturn]] void RaiseCanceled();

}  // namespace kxrestore::engine::odbc
