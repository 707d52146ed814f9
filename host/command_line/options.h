// The words of the command line.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "engine/value.h"

namespace kxrestore::cli {

enum class Command { kSets, kRuns, kTypes, kFind, kVersions, kList, kCount, kMark, kUnmark, kClear, kCopy };

struct ExitCode {
  static constexpr int kDone = 0;
  static constexpr int kFailed = 1;    // the catalog had an error; what could be done is done
  static constexpr int kUsage = 2;     // the command line makes no sense; nothing is done
  static constexpr int kStopped = 3;   // by Ctrl+C; what is marked by then stays
  static constexpr int kNotFound = 4;  // nothing is there, or not all of what was named
};

// The command line makes no sense; the text says why.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Which rows of the catalog are meant. Whatever is given must all be met.
struct Criteria {
  std::string mask;                      // part of the original name, as in the dialog's search
  std::string set;                       // number or name
  std::string run;                       // extension of the one run
  std::string upTo;                      // extension of a run: that one and the older ones
  std::vector<std::string> types;        // one of these, as in the dialog's list of file types
  std::string under;                     // a folder, or one file
  std::string names;                     // a file of original names, "-" for the standard input
  bool newest = false;                   // of each name only the newest version
  std::optional<engine::DateTime> asOf;  // ... among the runs that there were by then

  bool Empty() const;
};

struct Options {
  std::string catalog;  // file; empty for a server
  std::string server, database, user, passwordFile;
  bool askPassword = false;

  Command command = Command::kSets;
  std::string argument;  // SET of runs, NAME of versions, TO of copy
  Criteria criteria;
  bool json = false;
  bool dryRun = false;
  bool help = false;
  bool version = false;
};

// Raises UsageError.
Options ParseCommandLine(const std::vector<std::string>& words);

extern const char kHelp[];

}  // namespace kxrestore::cli
