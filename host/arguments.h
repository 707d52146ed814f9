// The command line of the sample host.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace kxrestore::host {

struct Arguments {
  std::string catalog;
  std::int16_t dbType = 0;
  std::string server, database, user, password;
  std::string restorePath;
  std::string log;
  std::string caption, buttonCaption, labelCaption;
  bool hideLabel = false;
  std::string action;
  std::string script;   // a file, or "-" for the standard input
  std::string shots;    // folder of the script's screenshots; default: that of the script
  bool window = false;  // a main window, which the dialog disables
};

extern const char kUsage[];

// Raises std::invalid_argument with a message for the user.
Arguments ParseArguments(const std::vector<std::string>& words);

}  // namespace kxrestore::host
