// Runs the command line in the test's own process.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>

#include "host/command_line/commands.h"
#include "host/command_line/options.h"
#include "tests/catalog/catalog_file.h"

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
  std::size_t stopAfter = 0;  // Ctrl+C is pressed after this many checks; 0: never

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

// Rows of set 1: versions of one file, names with special characters of masks, and a version without a run.
inline sample::FileRow Version(std::int64_t id, std::string run, std::string path,
                               std::string date = "2026-01-01 00:00:00") {
  sample::FileRow row = catalog_test::Live(id, std::move(path));
  row.extension = std::move(run);
  row.dateStamp = std::move(date);
  return row;
}
inline std::vector<sample::FileRow> Files() {
  return {Version(1, "001", "C:\\Data\\a.txt", "2026-01-05 10:00:00"),
          Version(2, "002", "C:\\DATA\\A.txt", "2026-01-20 10:00:00"),
          Version(3, "003", "C:\\Data\\a.txt", "2026-02-20 10:00:00"),
          Version(4, "001", "C:\\Database.txt"),
          Version(5, "003", "C:\\Data\\sub\\b [1].txt"),
          Version(6, "003", "D:\\\u00C4\u00F6.txt"),
          Version(7, "009", "C:\\Data\\late.txt", "2026-01-10 00:00:00")};
}
inline const std::vector<sample::RunRow> kRuns = {{1, "2026-01-10 08:00:00", "001", false, 6},
                                                  {1, "2026-02-10 08:00:00", "002", true, 6},
                                                  {1, "2026-03-10 08:00:00", "003", false, 6},
                                                  {1, "2026-01-01 08:00:00", "x01", false, 6}};

}  // namespace kxrestore::command_line_test
