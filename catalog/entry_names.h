// The names under which catalog rows are shown, and the column by which they are marked. Items that the
// mail-server plug-in backed up as one aggregate are shown under names of their own and marked by File, in
// all their versions; everything else is marked by Filename.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "catalog/restore_marks.h"

namespace kxrestore::catalog {

inline constexpr std::string_view kMailServer = "Exchange Server";
inline constexpr std::string_view kAggregateExtension = "kxexag";  // extension of an aggregate's shown name

// Whether a Plugin value begins with the mail server's name.
bool IsMailServer(std::string_view plugin);

// The name shown for a row of the mail server: `file`, or the plug-in's text when it is longer than the
// plug-in's name, followed by ".kxexag". Nothing for any other plug-in.
std::optional<std::string> AggregateName(std::string_view plugin, std::string_view file);

// Whether a shown name is an aggregate's.
bool IsAggregateName(std::string_view name);

// The value that marks the row shown as `name`: its File for a name with the extension of an aggregate, else
// its Filename.
inline std::string_view StoredName(std::string_view name, std::string_view file, std::string_view filename) {
  return IsAggregateName(name) ? file : filename;
}

// Marks or unmarks the entry shown as `name` in the marks' current run.
MarkResult MarkEntry(RestoreMarks& marks, std::string_view name, std::string_view storedName,
                     bool restoreValue);

}  // namespace kxrestore::catalog
