#include "tests/e2e/program.h"

#include <vector>

namespace kxrestore::e2e {

Program::Program(const std::wstring& commandLine) {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  HANDLE writeEnd = nullptr;
  if (!CreatePipe(&m_output, &writeEnd, &inherited, 0)) return;
  SetHandleInformation(m_output, HANDLE_FLAG_INHERIT, 0);

  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdOutput = start.hStdError = writeEnd;
  std::vector<wchar_t> line(commandLine.begin(), commandLine.end());
  line.push_back(L'\0');
  CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr, nullptr, &start,
                 &m_process);
  CloseHandle(writeEnd);
  m_reader = std::thread([this] {
    char piece[4096];
    DWORD size = 0;
    while (ReadFile(m_output, piece, sizeof piece, &size, nullptr) && size > 0) m_text.append(piece, size);
  });
}

Program::~Program() {
  Wait(0);
  if (m_output) CloseHandle(m_output);
  if (m_process.hProcess) CloseHandle(m_process.hProcess);
  if (m_process.hThread) CloseHandle(m_process.hThread);
}

int Program::Wait(DWORD limit) {
  DWORD code = static_cast<DWORD>(-1);
  if (m_process.hProcess) {
    if (WaitForSingleObject(m_process.hProcess, limit) == WAIT_OBJECT_0) {
      GetExitCodeProcess(m_process.hProcess, &code);
    } else {
      TerminateProcess(m_process.hProcess, 1);
    }
  }
  if (m_reader.joinable()) m_reader.join();
  return static_cast<int>(code);
}

std::string Program::Output() const {
  std::string text = m_text;
  std::erase(text, '\r');
  return text;
}

}  // namespace kxrestore::e2e
