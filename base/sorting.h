// The order of texts in lists that people read.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace kxrestore {

// Accented letters sort beside plain ones, and accents decide only between texts that are otherwise equal.
// Negative, positive, or zero for texts that differ in case only.
int CompareForSorting(std::string_view left, std::string_view right);

// Appends the sort key of a text: texts sort as their keys compare byte by byte.
using SortKey = std::function<void(std::string& key, std::string_view text)>;

// The same order as CompareForSorting, except that digits count as the number they write: "Archive 2" comes
// before "Archive 10".
void AppendSortKey(std::string& key, std::string_view text);

}  // namespace kxrestore
