#include "engine/odbc/connection.h"

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "engine/error_numbers.h"
#include "engine/odbc/odbc_error.h"

namespace kxrestore::engine::odbc {
namespace {

// With the time for the callbacks before and after it, a stop takes less than 200 ms.
constexpr std::chrono::milliseconds kGrace(120);
constexpr std::chrono::milliseconds kLoginMargin(2'000);

}  // namespace

void RaiseCanceled() {
  Raise(error_number::kCanceled, "Operation canceled by user.");
}

// ---- on the worker thread

void DriverHandles::Tidy() noexcept {
  try {
    std::erase_if(statements, [this](const std::shared_ptr<StatementData>& statement) {
      Outcome outcome;
      const bool isFreed = statement->Tidy(outcome);
      // An open cursor would prevent the statement's next execution.
      if (outcome.Failed()) lost = true;
      return isFreed;
    });
  } catch (const std::exception&) {  // no memory for the driver's message
    lost = true;
  }
}

void DriverHandles::Close() noexcept {
  try {
    if (isConnected && commitsManually)
      connection.EndTransaction(false).Ignore();  // disconnecting rolls back, too
    for (const std::shared_ptr<StatementData>& statement : statements) {
      statement->AskToFree();
      Outcome outcome;
      statement->Tidy(outcome);
      outcome.Ignore();  // disconnecting frees it, too
    }
    // No one is left to receive an error; a handle that cannot be freed stays with the driver manager.
    if (isConnected) connection.Disconnect().Ignore();
    connection.Free().Ignore();
    environment.Free().Ignore();
  } catch (const std::exception&) {  // no memory for the driver's message
  }
  statements.clear();
}

// ---- connecting

Connection::Connection(std::string_view connect, const Waits& waits, std::shared_ptr<const Waiting> waiting)
    : m_server(ValueOfKeyword(connect, "SERVER")),
      m_waits(waits),
      m_password(std::make_shared<const Password>(connect)),
      m_handles(std::make_shared<DriverHandles>()),
      m_thread(
          std::move(waiting), [handles = m_handles] { handles->Tidy(); },
          [handles = m_handles] { handles->Close(); }) {
  if (m_server.empty()) m_server = ValueOfKeyword(connect, "DATABASE");
  constexpr std::string_view kPrefix = "ODBC;";
  if (connect.size() >= kPrefix.size() && EqualIgnoringCase(connect.substr(0, kPrefix.size()), kPrefix)) {
    connect.remove_prefix(kPrefix.size());
  }
  const auto loginTime = std::chrono::duration_cast<std::chrono::seconds>(waits.login - kLoginMargin);
  const std::size_t seconds = static_cast<std::size_t>(std::max<std::int64_t>(loginTime.count(), 1));
  const auto log = [text = WideText(connect), password = m_password,
                    seconds](DriverHandles& handles) mutable {
    Outcome outcome = handles.environment.Allocate(password);
    if (!outcome.Failed()) outcome = handles.connection.Allocate(handles.environment);
    if (outcome.Failed()) return outcome;
    // A driver without this setting is bound by the limit of the call.
    handles.connection.SetAttribute(SQL_ATTR_LOGIN_TIMEOUT, seconds).Ignore();
    outcome = handles.connection.Connect(text);
    handles.isConnected = !outcome.Failed();
    return outcome;
  };
  const Outcome outcome = RunWithin(log, {.wait = waits.login}, true);
  if (outcome.Failed()) throw ErrorOf(outcome.Diagnostics(), true, m_server, *m_password);
}

// ---- calls

Outcome Connection::Run(Call call, const std::shared_ptr<StatementData>& stoppable) {
  DriverThread::Limits limits{.wait = m_waits.call, .grace = kGrace};
  // The result of the call shows whether it was canceled.
  if (stoppable) limits.cancel = [stoppable] { stoppable->Cancel().Ignore(); };
  return RunWithin(std::move(call), limits, false);
}

Outcome Connection::RunWithin(Call call, const DriverThread::Limits& limits, bool isConnecting) {
  if (IsLost()) RaiseLost();
  const auto outcome = std::make_shared<Outcome>();
  DriverThread::Ending ending;
  try {
    ending = m_thread.Run(
        [call = std::move(call), handles = m_handles, outcome] {
          *outcome = call(*handles);
          const bool failed = outcome->Failed();
          if (failed && FailureOf(outcome->Diagnostics()) == Failure::kConnection) handles->lost = true;
        },
        limits);
  } catch (...) {
    if (m_thread.IsAbandoned()) GiveUp();
    throw;
  }
  if (ending == DriverThread::Ending::kGivenUp) {
    GiveUp();
    m_lossMessage = "ODBC - call failed: '" + m_server + "' did not answer when the user stopped it.";
    RaiseCanceled();
  }
  if (ending == DriverThread::Ending::kTimedOut) {
    GiveUp();
    const auto seconds = std::chrono::round<std::chrono::seconds>(limits.wait).count();
    const std::string time = " within " + std::to_string(seconds) + " seconds.";
    if (isConnecting) {
      Raise(error_number::kOdbcConnectionFailed,
            "ODBC - connection to '" + m_server + "' failed: no answer" + time);
    }
    m_lossMessage = "ODBC - call failed: '" + m_server + "' has not answered" + time;
    RaiseLost();
  }
  if (IsLost() && m_lossMessage.empty() && outcome->Failed()) {
    m_lossMessage = ErrorOf(outcome->Diagnostics(), false, {}, *m_password).Description();
  }
  if (ending == DriverThread::Ending::kStopped && outcome->Failed()) RaiseCanceled();
  return *outcome;
}

void Connection::RaiseLost() const {
  Raise(error_number::kOdbcFailed, m_lossMessage.empty()
                                       ? "ODBC - call failed: the connection to '" + m_server + "' was lost."
                                       : m_lossMessage);
}

Outcome Connection::SetAutocommit(bool on) {
  const auto change = [on](DriverHandles& handles) {
    Outcome outcome =
        handles.connection.SetAttribute(SQL_ATTR_AUTOCOMMIT, on ? SQL_AUTOCOMMIT_ON : SQL_AUTOCOMMIT_OFF);
    if (outcome.Failed()) {
      handles.lost = true;
    } else {
      handles.commitsManually = !on;
    }
    return outcome;
  };
  return Run(change);
}

Outcome Connection::EndTransaction(bool commit) {
  const auto end = [commit](DriverHandles& handles) {
    Outcome outcome = handles.connection.EndTransaction(commit);
    if (outcome.Failed()) return outcome;
    if (handles.connection.SetAttribute(SQL_ATTR_AUTOCOMMIT, SQL_AUTOCOMMIT_ON).Failed()) {
      handles.lost = true;  // but the transaction ended as intended
    } else {
      handles.commitsManually = false;
    }
    return outcome;
  };
  return Run(end);
}

void Connection::GiveTurn() {
  if (!m_thread.GiveTurn()) RaiseCanceled();
}

void Connection::Pause(std::chrono::milliseconds time) {
  if (!m_thread.Pause(time)) RaiseCanceled();
}

}  // namespace kxrestore::engine::odbc
