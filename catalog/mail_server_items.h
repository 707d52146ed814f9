// Entries that the mail-server plug-in backed up as one aggregate: how lists name them, and by what they are
// marked.
#pragma once

#include <string>
#include <string_view>

namespace kxrestore::catalog {

inline constexpr std::string_view kMailServerPlugin = "Exchange Server";
inline constexpr std::string_view kAggregateExtension = "kxexag";

// Whether a Plugin value is the mail server's: the name itself, alone or with more text behind it.
bool IsMailServerPlugin(std::string_view plugin);

// The name a list shows for a row: `name`; for a mail-server item its File, or the plug-in text when that
// says more than the plug-in's name, with ".kxexag" behind it. The answer is one of the arguments or
// `buffer`.
std::string_view ShownName(std::string_view name, std::string_view plugin, std::string_view file,
                           std::string& buffer);

// Whether a shown name is that of an aggregate. Those are marked by File in all their versions, everything
// else by Filename.
bool IsAggregate(std::string_view shownName);

}  // namespace kxrestore::catalog
