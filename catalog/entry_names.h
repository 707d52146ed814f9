// What catalog rows are called, and by what they are marked. Items that the mail-server plug-in backed up as
// one aggregate have names of their own and are marked by File in all their versions, everything else by
// Filename.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "catalog/restore_marks.h"

namespace kxrestore::catalog {

inline constexpr std::string_view kMailServer = "Exchange Server";
inline constexpr std::string_view kAggregateExtension = "kxexag";  // of an aggregate's name

// Whether a Plugin value is the mail server's: its name, alone or with more behind it.
bool IsMailServer(std::string_view plugin);

// Name shown for a row of the mail server: `file`, or the plug-in's text when that says more than the
// plug-in's name, with ".kxexag" behind it. Nothing for any other plug-in.
std::optional<std::string> AggregateName(std::string_view plugin, std::string_view file);

// Whether a shown name is one of those.
bool IsAggregateName(std::string_view name);

// Of a row that is shown under `name`, the column that marking compares. Whatever is named like an aggregate
// is marked like one.
inline std::string_view StoredName(std::string_view name, std::string_view file, std::string_view filename) {
  return IsAggregateName(name) ? file : filename;
}

// Marks or unmarks what is shown under `name` in the current run of the marks.
MarkResult MarkEntry(RestoreMarks& marks, std::string_view name, std::string_view storedName,
                     bool restoreValue);

}  // namespace kxrestore::catalog
