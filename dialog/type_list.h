// The file types of a catalog, listed by kind for the user to choose from.
#pragma once

#include "catalog/type_census.h"
#include "controls/auto_select.h"

namespace kxrestore::dialog {

// Adds a group for each kind of file that there is, and after the groups all types, the most frequent first.
// A type's text stands for itself in a pattern; its description says which other types that finds as well.
// The numbers of files are those of the census until the files are counted (catalog/type_counts.h).
void ListTypes(const catalog::TypeCensus& census, controls::AutoSelect& list);

}  // namespace kxrestore::dialog
