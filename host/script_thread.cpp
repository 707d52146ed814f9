#include "host/script_thread.h"

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iostream>

#include "component/com/wide_text.h"
#include "host/driver/script.h"

namespace kxrestore::host {
namespace {

void Run(const std::string& file) {
  try {
    const driver::DialogDriver driver;
    if (file == "-") {
      driver::RunScript(driver, std::cin, std::cout, std::filesystem::current_path());
      return;
    }
    const std::filesystem::path path = component::com::ToWide(file);
    std::ifstream script(path);
    if (!script) throw driver::DriverError("cannot read " + file);
    driver::RunScript(driver, script, std::cout, std::filesystem::absolute(path).parent_path());
  } catch (const std::exception& error) {
    std::cout.flush();
    std::cerr << "script: " << error.what() << std::endl;
    TerminateProcess(GetCurrentProcess(), 3);
  }
}

}  // namespace

ScriptThread::ScriptThread(const std::string& file) {
  if (!file.empty()) m_thread = std::thread(Run, file);
}

ScriptThread::~ScriptThread() {
  if (m_thread.joinable()) m_thread.join();
}

}  // namespace kxrestore::host
