#include "host/command_line/commands.h"

#include <ostream>

#include "base/error.h"
#include "engine/error_numbers.h"
#include "host/command_line/copy_command.h"
#include "host/command_line/listing_commands.h"
#include "host/command_line/marking_commands.h"
#include "host/command_line/options.h"
#include "host/command_line/session.h"

namespace kxrestore::cli {

namespace {

using Handler = int (*)(Session& session, const Options& options);

Handler HandlerOf(Command command) {
  switch (command) {
    case Command::kSets:
      return ListSets;
    case Command::kRuns:
      return ListRuns;
    case Command::kTypes:
      return ListTypes;
    case Command::kFind:
      return Find;
    case Command::kVersions:
      return ListVersions;
    case Command::kList:
      return ListMarked;
    case Command::kCount:
      return Count;
    case Command::kMark:
    case Command::kUnmark:
      return Mark;
    case Command::kCopy:
      return Copy;
    case Command::kClear:
      break;
  }
  return Clear;
}

int RunCommand(Options& options, Host& host) {
  Session session(host, options);
  try {
    const int code = HandlerOf(options.command)(session, options);
    session.Finish();
    return code;
  } catch (const Error& error) {
    if (error.Number() == engine::error_number::kCanceled && session.Stopped())
      return EndOf(session, nullptr, false);
    session.Say("kxrestore: (" + std::to_string(error.Number()) + ") " + error.Description());
    return ExitCode::kFailed;
  }
}

// Defaults from the environment, for options that are not given.
std::vector<std::string> WithCatalog(std::vector<std::string> words, const Host& host) {
  const auto catalog = host.environment ? host.environment("KXRESTORE_CATALOG") : std::nullopt;
  if (!catalog || catalog->empty()) return words;
  for (const std::string& word : words)
    if (word.starts_with("--catalog") || word.starts_with("--server") || word == "--help" ||
        word == "--version" || word == "--")
      return words;
  words.push_back("--catalog=" + *catalog);
  return words;
}

}  // namespace

int Run(const std::vector<std::string>& words, Host& host) {
  try {
    Options options = ParseCommandLine(WithCatalog(words, host));
    if (options.help) {
      host.out << kHelp;
      return ExitCode::kDone;
    }
    if (options.version) {
      host.out << "kxrestore " KX_VERSION "\n";
      return ExitCode::kDone;
    }
    return RunCommand(options, host);
  } catch (const UsageError& error) {
    host.err << "kxrestore: " << error.what() << "\nSee kxrestore --help." << std::endl;
    return ExitCode::kUsage;
  } catch (const std::exception& error) {
    host.err << "kxrestore: " << error.what() << std::endl;
    return ExitCode::kFailed;
  }
}

}  // namespace kxrestore::cli
