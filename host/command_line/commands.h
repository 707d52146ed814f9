// The commands of kxrestore.
#pragma once

#include <string>
#include <vector>

#include "host/command_line/host.h"

namespace kxrestore::cli {

// Runs one command line, without the program's name. Returns one of ExitCode; nothing is thrown.
int Run(const std::vector<std::string>& words, Host& host);

}  // namespace kxrestore::cli
