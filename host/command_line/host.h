// The environment of a run of the command line. Tests substitute their own.
#pragma once

#include <functional>
#include <iosfwd>
#include <optional>
#include <string>

namespace kxrestore::cli {

struct Host {
  std::istream& in;
  std::ostream& out;
  std::ostream& err;
  bool terminal = false;  // `err` is a terminal: show progress, and ask for a password if needed

  std::function<std::optional<std::string>(const std::string& name)> environment;
  std::function<std::string(const std::string& prompt)> askPassword;
  std::function<bool()> stopped = [] { return false; };  // Ctrl+C was pressed
};

}  // namespace kxrestore::cli
