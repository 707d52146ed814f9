#include "host/command_line/options.h"

#include <algorithm>
#include <array>
#include <map>

namespace kxrestore::cli {

const char kHelp[] =
    R"(usage: kxrestore COMMAND [OPTION...] --catalog FILE
       kxrestore COMMAND [OPTION...] --server SERVER --database NAME [--user NAME]

Selects what a backup catalog restores, by the rules of the restore dialog.

commands that read:
  sets              backup sets with completed runs
  runs SET          completed runs of a set, newest first
  types             file types in the catalog, most frequent first
  find [MASK]       files whose original name contains the mask
  versions NAME     all versions of one file, newest first
  list              files marked to be restored
  count [MASK]      number and bytes of marked files; with criteria, of matching files
commands that write:
  mark [MASK]       mark files to be restored; existing marks stay
  unmark [MASK]     clear the marks of matching files
  clear             clear all marks
  copy TO           copy a catalog file with its marks into a new file, or into an empty catalog on a
                    server (TO is then its connect string, "ODBC;...")

criteria (a file must meet all that are given):
  MASK              * any text, ? one character, # one digit, [a-c] [!a-c] one of a list
  --set SET         a set, by number or name
  --run RUN         one run of that set, by its extension
  --up-to RUN       that run and older ones
  --type TYPE       a file type (doc); may be repeated to allow several; not with MASK
  --under PATH      a folder with everything below it
  --names FILE      original names, one a line; - reads the standard input
  --newest          only the newest version of each name
  --as-of DATE      the state at a date (YYYY-MM-DD, optionally with a time): the newest version of each
                    name in the runs up to then

options:
  --json            print one JSON object a line instead of a table
  --dry-run         show what mark, unmark or clear would change, without changing it
  --user NAME       user of the server; without it the connection is a trusted one
  --password-file FILE   file with the password in its first line; default: the environment variable
                    KXRESTORE_PASSWORD, or a prompt on a terminal
  --help, --version

The environment variable KXRESTORE_CATALOG is the default of --catalog.

exit codes: 0 success; 1 error in the catalog, the rest is done; 2 invalid command line;
            3 stopped by Ctrl+C, marks made so far stay; 4 nothing found, or not every name
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
  if (!date) throw UsageError("not a date: " + text + " (expected YYYY-MM-DD or \"YYYY-MM-DD HH:MM:SS\")");
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
    if (options.command == Command::kRuns) throw UsageError("runs needs a set");
    if (options.command == Command::kVersions) throw UsageError("versions needs a name");
    if (options.command == Command::kCopy) throw UsageError("copy needs a target");
  }
  if (options.command == Command::kCopy && options.catalog.empty()) throw UsageError("copy needs --catalog");
  if (!criteria.Empty() && !TakesCriteria(options.command))
    throw UsageError("this command accepts no criteria");
  if (options.command == Command::kVersions && (criteria.newest || criteria.asOf || !criteria.types.empty() ||
                                                !criteria.names.empty() || !criteria.under.empty()))
    throw UsageError("versions accepts only --set, --run and --up-to");
  if (options.dryRun && !Writes(options.command))
    throw UsageError("--dry-run applies to mark, unmark and clear only");
  if ((options.command == Command::kMark || options.command == Command::kUnmark) && criteria.Empty())
    throw UsageError("specify what to " + std::string(options.command == Command::kMark
                                                          ? "mark; the mask * matches every file"
                                                          : "unmark; clear removes all marks"));
  if (criteria.set.empty() && !(criteria.run.empty() && criteria.upTo.empty()))
    throw UsageError("--run and --up-to need --set");
  if (!criteria.run.empty() && !criteria.upTo.empty())
    throw UsageError("--run and --up-to exclude each other");
  if (!criteria.mask.empty() && !criteria.types.empty())
    throw UsageError("MASK and --type exclude each other");
  if (options.catalog.empty() && options.server.empty()) throw UsageError("--catalog or --server is missing");
  if (!options.catalog.empty() && !options.server.empty())
    throw UsageError("--catalog and --server exclude each other");
  if (!options.server.empty() && options.database.empty()) throw UsageError("--server needs --database");
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
      if (i + 1 == words.size()) throw UsageError(word + " needs a value");
      value = words[++i];
    }
    if (value->empty()) throw UsageError(word + " needs a value");
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
  if (plain.size() > 2) throw UsageError("unexpected " + plain[2] + "; quote arguments that contain blanks");
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
