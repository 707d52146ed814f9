// What a run of the command line is given by the program around it, so that tests can be that program.
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
  bool terminal = false;  // somebody watches `err`: progress is shown and a password may be asked for

  std::function<std::optional<std::string>(const std::string& name)> environment;
  std::function<std::string(const std::string& prompt)> askPassword;
  std::function<bool()> stopped = [] { return false; };  // Ctrl+C was pressed
};

}  // namespace kxrestore::cli
