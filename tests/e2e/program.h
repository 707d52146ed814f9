// A child process without a console window. The destructor terminates it if it is still running.
#pragma once

#include <windows.h>

#include <string>
#include <thread>

namespace kxrestore::e2e {

class Program {
 public:
  explicit Program(std::wstring commandLine) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    HANDLE writeEnd = nullptr;
    if (!CreatePipe(&m_output, &writeEnd, &inherited, 0)) return;
    SetHandleInformation(m_output, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = start.hStdError = writeEnd;
    CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr, nullptr,
                   &start, &m_process);
    CloseHandle(writeEnd);
    m_reader = std::thread([this] {
      char piece[4096];
      for (DWORD size = 0; ReadFile(m_output, piece, sizeof piece, &size, nullptr) && size > 0;) {
        m_text.append(piece, size);
      }
    });
  }
  ~Program() {
    Wait(0);
    for (const HANDLE handle : {m_output, m_process.hProcess, m_process.hThread}) {
      if (handle) CloseHandle(handle);
    }
  }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  DWORD Id() const { return m_process.dwProcessId; }
  // The exit code; -1 when the program does not start or does not end within `limit` ms.
  int Wait(DWORD limit = 60000) {
    DWORD code = static_cast<DWORD>(-1);
    if (m_process.hProcess && WaitForSingleObject(m_process.hProcess, limit) != WAIT_OBJECT_0) {
      TerminateProcess(m_process.hProcess, 1);
    } else if (m_process.hProcess) {
      GetExitCodeProcess(m_process.hProcess, &code);
    }
    if (m_reader.joinable()) m_reader.join();
    return static_cast<int>(code);
  }
  // What the program wrote, with "\n" line ends. Call Wait first.
  std::string Output() const {
    std::string text = m_text;
    std::erase(text, '\r');
    return text;
  }

 private:
  PROCESS_INFORMATION m_process{};
  HANDLE m_output = nullptr;
  std::string m_text;
  std::thread m_reader;
};

}  // namespace kxrestore::e2e
