// Runs a script of the dialog driver beside the dialog.
#pragma once

#include <string>
#include <thread>

namespace kxrestore::host {

class ScriptThread {
 public:
  // `file` and `shots` as in Arguments; an empty file runs nothing. A script that fails says why on the
  // standard error and ends the process with exit code 3, because nobody is left who could close the dialog.
  ScriptThread(const std::string& file, const std::string& shots);
  ~ScriptThread();
  ScriptThread(const ScriptThread&) = delete;
  ScriptThread& operator=(const ScriptThread&) = delete;

 private:
  std::thread m_thread;
};

}  // namespace kxrestore::host
