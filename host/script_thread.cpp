#include "host/script_thread.h"

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iostream>

#include "base/utf16.h"
#include "host/driver/script.h"

namespace kxrestore::host {
namespace {

void Run(const std::string& file, const std::string& shots) {
  try {
    const driver::DialogDriver driver;
    const std::filesystem::path path = ToWide(file);
    std::filesystem::path folder = ToWide(shots);
    if (folder.empty()) folder = std::filesystem::absolute(path).parent_path();
    if (file == "-") {
      driver::RunScript(driver, std::cin, std::cout, folder);
      return;
    }
    std::ifstream script(path);
    if (!script) throw driver::DriverError("cannot read " + file);
    driver::RunScript(driver, script, std::cout, folder);
  } catch (const std::exception& error) {
    std::cout.flush();
    std::cerr << "script: " << error.what() << std::endl;
    TerminateProcess(GetCurrentProcess(), 3);
  }
}

}  // namespace

ScriptThread::ScriptThread(const std::string& file, const std::string& shots) {
  if (!file.empty()) m_thread = std::thread(Run, file, shots);
}

ScriptThread::~ScriptThread() {
  if (m_thread.joinable()) m_thread.join();
}

}  // namespace kxrestore::host
