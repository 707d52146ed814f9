// Runs a script of the dialog driver on a thread of its own.
#pragma once

#include <string>
#include <thread>

namespace kxrestore::host {

class ScriptThread {
 public:
  // `file` and `shots` as in Arguments; without a file nothing runs. A failing script prints the reason on
  // the standard error and ends the process with exit code 3, because nothing else would close the dialog.
  ScriptThread(const std::string& file, const std::string& shots);
  ~ScriptThread();
  ScriptThread(const ScriptThread&) = delete;
  ScriptThread& operator=(const ScriptThread&) = delete;

 private:
  std::thread m_thread;
};

}  // namespace kxrestore::host
