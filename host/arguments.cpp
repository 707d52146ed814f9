#include "host/arguments.h"

#include <map>

namespace kxrestore::host {

const char kUsage[] =
    "restore_host --catalog FILE [--restore-path P] [--log FILE] [--action WORD]\n"
    "             [--db-type N --server S --database D [--user U --password P]]\n"
    "             [--caption T] [--button-caption T] [--label-caption T] [--hide-label]\n"
    "             [--window] [--script FILE [--shots FOLDER]]\n";

Arguments ParseArguments(const std::vector<std::string>& words) {
  Arguments arguments;
  std::string dbType = "0";
  const std::map<std::string, std::string*> texts = {
      {"--catalog", &arguments.catalog},
      {"--db-type", &dbType},
      {"--server", &arguments.server},
      {"--database", &arguments.database},
      {"--user", &arguments.user},
      {"--password", &arguments.password},
      {"--restore-path", &arguments.restorePath},
      {"--log", &arguments.log},
      {"--caption", &arguments.caption},
      {"--button-caption", &arguments.buttonCaption},
      {"--label-caption", &arguments.labelCaption},
      {"--action", &arguments.action},
      {"--script", &arguments.script},
      {"--shots", &arguments.shots},
  };
  const std::map<std::string, bool*> switches = {{"--hide-label", &arguments.hideLabel},
                                                 {"--window", &arguments.window}};

  for (std::size_t i = 0; i < words.size(); ++i) {
    if (const auto known = switches.find(words[i]); known != switches.end()) {
      *known->second = true;
      continue;
    }
    const auto known = texts.find(words[i]);
    if (known == texts.end()) throw std::invalid_argument("unknown argument " + words[i]);
    if (i + 1 == words.size()) throw std::invalid_argument(words[i] + " wants a value");
    *known->second = words[++i];
  }

  if (dbType.empty() || dbType.size() > 4 || dbType.find_first_not_of("0123456789") != std::string::npos) {
    throw std::invalid_argument("--db-type wants a number");
  }
  arguments.dbType = static_cast<std::int16_t>(std::stoi(dbType));
  if (arguments.dbType == 0 && arguments.catalog.empty()) throw std::invalid_argument("--catalog is missing");
  return arguments;
}

}  // namespace kxrestore::host
