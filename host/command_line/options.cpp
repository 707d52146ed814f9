#include "host/command_line/options.h"

#include <algorithm>
#include <array>
#include <map>

namespace kxrestore::cli {

const char kHelp[] =
    R"(usage: kxrestore COMMAND [OPTION...] --catalog FILE
       kxrestore COMMAND [OPTION...] --server SERVER --database NAME [--user NAME]

Chooses what a backup catalog restores, by the rules of the restore dialog.

commands that look:
  sets              the backup sets
  runs SET          the completed runs of a set, the newest first
  types             the file types that there are, the most frequent first
  find [MASK]       the files whose original name holds the mask
  versions NAME     every version of one file, the newest first
  list              what is marked to be restored
  count [MASK]      how many files and bytes are marked; with criteria, how many meet them
commands that write:
  mark [MASK]       marks files to be restored; marks that are there stay
  unmark [MASK]     takes marks away
  clear             takes every mark of the catalog away
  copy TO           copies a catalog file, its marks included: into a new file, or into a server's empty
                    catalog by its connect string ("ODBC;...")

criteria; all that are given must be met:
  MASK              * any text, ? one character, # one digit, [a-c] [!a-c] one of a list
  --set SET         a set, by number or name
  --run RUN         one run of that set, by its extension
  --up-to RUN       that run and the older ones
  --type TYPE       a file type (doc); may be given several times; not with MASK
  --under PATH      a folder with all that is below it
  --names FILE      original names, one a line; - reads the standard input
  --newest          of each name only the newest version
  --as-of DATE      the state on a date (YYYY-MM-DD, also with a time): of each name the newest
                    version in the runs that there were

options:
  --json            one JSON object a line instead of a table
  --dry-run         shows what mark, unmark or clear would do, and does nothing
  --user NAME       of the server; without one the connection is a trusted one
  --password-file FILE   its first line is the password. Without it the environment variable
                    KXRESTORE_PASSWORD is taken, and a terminal is asked
  --help, --version

The environment variable KXRESTORE_CATALOG stands in for --catalog.

exit codes: 0 done; 1 error of the catalog, what could be done is done; 2 wrong command line;
            3 stopped by Ctrl+C, what is marked by then stays; 4 nothing found, or not every name
)";

namespace {

struct CommandName {
  const char* name;
  Command command;
};
constexpr CommandName kCommands[] = {
    {"sets", Command::kSets},   {"runs", Command::kRuns},         {"types", Command::kTypes},
    {"find", Command::kFind},   {"versions", Command::kVersions}, {"list", Command::kList},
    {"count", Command::kCount}, {"mark", Command::kMark},         {"unmark", Command::kUnmark},
    {"clear", Command::kClear}, {"copy", Command::kCopy}};

Command CommandOf(const std::string& word) {
  for (const CommandName& known : kCommands)
    if (word == known.name) return known.command;
  throw UsageError("unknown command " + word);
}

bool TakesCriteria(Command command) {
  constexpr std::array kThose{Command::kFind, Command::kVersions, Command::kCount, Command::kMark,
                              Command::kUnmark};
  return std::find(kThose.begin(), kThose.end(), command) != kThose.end();
}

bool Writes(Command command) {
  return command == Command::kMark || command == Command::kUnmark || command == Command::kClear;
}

// A date without a time means the end of that day.
engine::DateTime DateOf(const std::string& text) {
  const auto date = engine::ToDateTime(std::string_view(text));
  if (!date) throw UsageError("no date: " + text + " (wanted: YYYY-MM-DD or \"YYYY-MM-DD HH:MM:SS\")");
  engine::DateTime moment = *date;
  if (text.size() == std::string_view("YYYY-MM-DD").size()) {
    moment.hour = 23;
    moment.minute = moment.second = 59;
  }
  return moment;
}

void Check(const Options& options) {
  const Criteria& criteria = options.criteria;
  if (options.argument.empty()) {
    if (options.command == Command::kRuns) throw UsageError("runs wants a set");
    if (options.command == Command::kVersions) throw UsageError("versions wants a name");
    if (options.command == Command::kCopy) throw UsageError("copy wants the target");
  }
  if (options.command == Command::kCopy && options.catalog.empty()) throw UsageError("copy wants --catalog");
  if (!criteria.Empty() && !TakesCriteria(options.command))
    throw UsageError("this command takes no criteria");
  if (options.command == Command::kVersions && (criteria.newest || criteria.asOf || !criteria.types.empty() ||
                                                !criteria.names.empty() || !criteria.under.empty()))
    throw UsageError("versions takes --set, --run and --up-to alone");
  if (options.dryRun && !Writes(options.command)) throw UsageError("--dry-run is for mark, unmark and clear");
  if ((options.command == Command::kMark || options.command == Command::kUnmark) && criteria.Empty())
    throw UsageError("say what to " + std::string(options.command == Command::kMark
                                                      ? "mark; a mask of * means every file"
                                                      : "unmark; clear takes every mark away"));
  if (criteria.set.empty() && !(criteria.run.empty() && criteria.upTo.empty()))
    throw UsageError("--run and --up-to want --set");
  if (!criteria.run.empty() && !criteria.upTo.empty()) throw UsageError("either --run or --up-to");
  if (!criteria.mask.empty() && !criteria.types.empty()) throw UsageError("either MASK or --type");
  if (options.catalog.empty() && options.server.empty()) throw UsageError("--catalog or --server is missing");
  if (!options.catalog.empty() && !options.server.empty()) throw UsageError("either --catalog or --server");
  if (!options.server.empty() && options.database.empty()) throw UsageError("--server wants --database");
}

}  // namespace

bool Criteria::Empty() const {
  return mask.empty() && set.empty() && run.empty() && upTo.empty() && types.empty() && under.empty() &&
         names.empty() && !newest && !asOf;
}

Options ParseCommandLine(const std::vector<std::string>& words) {
  Options options;
  Criteria& criteria = options.criteria;
  const std::map<std::string, std::string*> texts = {{"--catalog", &options.catalog},
                                                     {"--server", &options.server},
                                                     {"--database", &options.database},
                                                     {"--user", &options.user},
                                                     {"--password-file", &options.passwordFile},
                                                     {"--set", &criteria.set},
                                                     {"--run", &criteria.run},
                                                     {"--up-to", &criteria.upTo},
                                                     {"--under", &criteria.under},
                                                     {"--names", &criteria.names}};
  const std::map<std::string, bool*> switches = {
      {"--newest", &criteria.newest}, {"--json", &options.json}, {"--dry-run", &options.dryRun},
      {"--help", &options.help},      {"-h", &options.help},     {"--version", &options.version}};

  std::vector<std::string> plain;
  bool onlyPlain = false;
  for (std::size_t i = 0; i < words.size(); ++i) {
    std::string word = words[i];
    if (onlyPlain || !word.starts_with("-") || word == "-") {
      plain.push_back(word);
      continue;
    }
    if (word == "--") {
      onlyPlain = true;
      continue;
    }
    if (const auto known = switches.find(word); known != switches.end()) {
      *known->second = true;
      continue;
    }
    std::optional<std::string> value;
    if (const auto equals = word.find('='); equals != std::string::npos) {
      value = word.substr(equals + 1);
      word.resize(equals);
    }
    const auto known = texts.find(word);
    if (known == texts.end() && word != "--type" && word != "--as-of")
      throw UsageError("unknown option " + word);
    if (!value) {
      if (i + 1 == words.size()) throw UsageError(word + " wants a value");
      value = words[++i];
    }
    if (value->empty()) throw UsageError(word + " wants a value");
    if (word == "--type") {
      criteria.types.push_back(*value);
    } else if (word == "--as-of") {
      criteria.asOf = DateOf(*value);
    } else {
      *known->second = *value;
    }
  }
  if (options.help || options.version) return options;

  if (plain.empty()) throw UsageError("no command");
  options.command = CommandOf(plain[0]);
  if (plain.size() > 2) throw UsageError("unexpected " + plain[2] + "; an argument with blanks wants quotes");
  if (plain.size() == 2) {
    if (options.command == Command::kRuns || options.command == Command::kVersions ||
        options.command == Command::kCopy) {
      options.argument = plain[1];
    } else if (TakesCriteria(options.command)) {
      criteria.mask = plain[1];
    } else {
      throw UsageError("unexpected " + plain[1]);
    }
  }
  Check(options);
  return options;
}

}  // namespace kxrestore::cli
