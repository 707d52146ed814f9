#include "host/command_line/session.h"

#include <fstream>
#include <ostream>

#include "base/utf16.h"
#include "host/command_line/files.h"
#include "host/command_line/output.h"

namespace kxrestore::cli {

namespace {

using namespace std::chrono_literals;
constexpr auto kFirstProgress = 500ms;
constexpr auto kProgressEvery = 200ms;
constexpr std::size_t kLookEvery = 32;  // rows; reading the clock for each would cost more than the row

std::string Password(Host& host, const Options& options) {
  if (options.user.empty()) return {};
  if (!options.passwordFile.empty()) {
    std::ifstream file = OpenFile(options.passwordFile);
    std::string line;
    if (!file || !std::getline(file, line)) throw UsageError("no password in " + options.passwordFile);
    if (line.ends_with('\r')) line.pop_back();
    return line;
  }
  if (host.environment) {
    if (const auto password = host.environment("KXRESTORE_PASSWORD")) return *password;
  }
  if (host.terminal && host.askPassword) return host.askPassword("Password of " + options.user + ": ");
  throw UsageError("no password of " + options.user + ": use --password-file or KXRESTORE_PASSWORD");
}

}  // namespace

Session::Session(Host& sessionHost, const Options& options)
    : host(sessionHost),
      workspace(engine::MakeDefaultWorkspace()),
      m_nextProgress(Clock::now() + kFirstProgress) {
  if (options.server.empty()) {
    connection = {catalog::kFileCatalog, options.catalog, {}};
  } else {
    connection = {
        catalog::kServerCatalog,
        {},
        catalog::BuildConnectString(options.database, options.server, options.user, Password(host, options))};
  }
  workspace->SetWaiting([this] {
    if (Clock::now() >= m_nextProgress) ShowProgress();
    return !LookForStop();
  });
  workspace->BeginAction();
  m_inAction = true;
}

Session::~Session() {
  ClearProgress();
  workspace->SetWaiting({});
  if (!m_inAction) return;
  try {
    workspace->EndAction();
  } catch (...) {  // during stack unwinding: the first error is reported
  }
}

bool Session::Next() {
  if (m_rows++ % kLookEvery == 0) {
    try {
      workspace->Idle();
    } catch (const Error& error) {
      if (!onCommitError) throw;
      onCommitError(error);
    }
    if (LookForStop()) return false;
    if (Clock::now() >= m_nextProgress) ShowProgress();
  }
  return true;
}

void Session::Finish() {
  ClearProgress();
  m_inAction = false;
  workspace->EndAction();
}

void Session::Say(std::string_view line) {
  ClearProgress();
  host.err << line << std::endl;
}

void Session::ShowProgress() {
  ShowStep("Scanning " + Grouped(static_cast<std::int64_t>(m_rows)) + " ...");
}

void Session::ShowStep(const std::string& text) {
  if (Clock::now() < m_nextProgress) return;
  m_nextProgress = Clock::now() + kProgressEvery;
  if (!host.terminal) return;
  const std::size_t blanks = m_shownWidth > text.size() ? m_shownWidth - text.size() : 0;
  m_shownWidth = text.size();
  host.err << '\r' << text << std::string(blanks, ' ') << std::flush;
}

void Session::ClearProgress() {
  if (m_shownWidth == 0) return;
  host.err << '\r' << std::string(m_shownWidth, ' ') << '\r' << std::flush;
  m_shownWidth = 0;
}

}  // namespace kxrestore::cli
