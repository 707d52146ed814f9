// Parses the command line.
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
  static constexpr int kFailed = 1;    // an error in the catalog; whatever could be done is done
  static constexpr int kUsage = 2;     // invalid command line; nothing is done
  static constexpr int kStopped = 3;   // by Ctrl+C; marks made so far stay
  static constexpr int kNotFound = 4;  // nothing found, or not everything that was named
};

// The command line is invalid; the text says why.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Selects rows of the catalog. A row must meet all criteria that are given.
struct Criteria {
  std::string mask;                      // part of the original name, as in the dialog's search
  std::string set;                       // number or name
  std::string run;                       // extension of the one run
  std::string upTo;                      // extension of a run: this one and older ones
  std::vector<std::string> types;        // any of these, as in the dialog's list of file types
  std::string under;                     // a folder, or one file
  std::string names;                     // file with original names; "-": standard input
  bool newest = false;                   // only the newest version of each name
  std::optional<engine::DateTime> asOf;  // the newest version at that time

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
