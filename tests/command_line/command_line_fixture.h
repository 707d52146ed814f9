// Runs the command line in the test's own process.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "host/command_line/commands.h"
#include "host/command_line/options.h"

namespace kxrestore::command_line_test {

using cli::ExitCode;
using Words = std::vector<std::string>;

struct Outcome {
  int code = 0;
  std::string out, err;
};

class CommandLine {
 public:
  std::string input;  // the standard input of the next run
  std::map<std::string, std::string> environment;
  std::size_t stopAfter = 0;  // how often it may ask whether Ctrl+C was pressed; 0: for ever

  Outcome Run(const Words& words) {
    std::istringstream in(input);
    std::ostringstream out, err;
    cli::Host host{in, out, err};
    host.environment = [this](const std::string& name) -> std::optional<std::string> {
      const auto found = environment.find(name);
      return found == environment.end() ? std::nullopt : std::optional(found->second);
    };
    std::size_t asked = 0;
    host.stopped = [&] { return stopAfter > 0 && ++asked > stopAfter; };
    const int code = cli::Run(words, host);
    return {code, out.str(), err.str()};
  }
};

}  // namespace kxrestore::command_line_test
