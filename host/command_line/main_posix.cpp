// kxrestore on systems with POSIX signals and terminals.
#include <csignal>
#include <cstdlib>
#include <iostream>

#include <termios.h>
#include <unistd.h>

#include "host/command_line/commands.h"

namespace {

volatile std::sig_atomic_t g_stopped = 0;

// The second Ctrl+C ends the program.
void Stop(int signal) {
  g_stopped = 1;
  std::signal(signal, SIG_DFL);
}

std::string AskPassword(const std::string& prompt) {
  std::cerr << prompt << std::flush;
  termios before{};
  const bool quiet = tcgetattr(STDIN_FILENO, &before) == 0;
  if (quiet) {
    termios without = before;
    without.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &without);
  }
  std::string password;
  std::getline(std::cin, password);
  if (quiet) tcsetattr(STDIN_FILENO, TCSAFLUSH, &before);
  std::cerr << std::endl;
  return password;
}

}  // namespace

int main(int count, char** words) {
  std::ios::sync_with_stdio(false);
  std::signal(SIGINT, Stop);
  std::signal(SIGTERM, Stop);
  kxrestore::cli::Host host{std::cin, std::cout, std::cerr, isatty(STDERR_FILENO) == 1};
  host.environment = [](const std::string& name) -> std::optional<std::string> {
    const char* const value = std::getenv(name.c_str());
    return value ? std::optional<std::string>(value) : std::nullopt;
  };
  if (isatty(STDIN_FILENO) == 1) host.askPassword = AskPassword;
  host.stopped = [] { return g_stopped != 0; };
  return kxrestore::cli::Run({words + 1, words + count}, host);
}
