// Another program, run without a console window; ended when it outlives the object.
#pragma once

#include <windows.h>

#include <string>
#include <thread>

namespace kxrestore::e2e {

class Program {
 public:
  explicit Program(const std::wstring& commandLine);
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  DWORD Id() const { return m_process.dwProcessId; }
  // The exit code; -1 when the program does not start or does not end within `limit` ms.
  int Wait(DWORD limit = 60000);
  // What it wrote, with plain line ends. Only after Wait.
  std::string Output() const;

 private:
  PROCESS_INFORMATION m_process{};
  HANDLE m_output = nullptr;
  std::string m_text;
  std::thread m_reader;
};

}  // namespace kxrestore::e2e
