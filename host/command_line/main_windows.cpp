// kxrestore on Windows: UTF-16 in, UTF-8 out.
#include <windows.h>

#include <objbase.h>

#include <atomic>
#include <iostream>

#include <io.h>

#include "base/utf16.h"
#include "host/command_line/commands.h"

namespace {

std::atomic<bool> g_stopped{false};

// The second Ctrl+C ends the program.
BOOL WINAPI Stop(DWORD event) {
  return event == CTRL_C_EVENT && !g_stopped.exchange(true);
}

std::string AskPassword(const std::string& prompt) {
  std::cerr << prompt << std::flush;
  const HANDLE console = GetStdHandle(STD_INPUT_HANDLE);
  DWORD before = 0;
  GetConsoleMode(console, &before);
  SetConsoleMode(console, before & ~static_cast<DWORD>(ENABLE_ECHO_INPUT));
  wchar_t typed[256];
  DWORD count = 0;
  if (!ReadConsoleW(console, typed, 256, &count, nullptr)) count = 0;
  SetConsoleMode(console, before);
  std::cerr << std::endl;
  while (count > 0 && (typed[count - 1] == L'\r' || typed[count - 1] == L'\n')) --count;
  return kxrestore::FromWide(std::wstring_view(typed, count));
}

std::optional<std::string> Variable(const std::string& name) {
  wchar_t value[4096];
  const DWORD length = GetEnvironmentVariableW(kxrestore::ToWide(name).c_str(), value, 4096);
  if (length == 0 || length >= 4096) return std::nullopt;
  return kxrestore::FromWide(std::wstring_view(value, length));
}

}  // namespace

int wmain(int count, wchar_t** words) {
  std::ios::sync_with_stdio(false);
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);  // the desktop engine is driven by automation
  SetConsoleOutputCP(CP_UTF8);
  SetConsoleCtrlHandler(Stop, TRUE);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(kxrestore::FromWide(words[i]));
  kxrestore::cli::Host host{std::cin, std::cout, std::cerr, _isatty(_fileno(stderr)) != 0};
  host.environment = Variable;
  if (_isatty(_fileno(stdin))) host.askPassword = AskPassword;
  host.stopped = [] { return g_stopped.load(); };
  const int code = kxrestore::cli::Run(arguments, host);
  CoUninitialize();
  return code;
}
