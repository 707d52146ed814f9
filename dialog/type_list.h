// The file types of a catalog, listed by kind for the user to choose from.
#pragma once

#include "catalog/type_census.h"
#include "controls/auto_select.h"

namespace kxrestore::dialog {

// Adds a group for each kind of file, then all types, the most frequent first. A type's description names the
// other types that its pattern matches as well. Numbers of files come from the census until the files are
// counted (catalog/type_counts.h).
void ListTypes(const catalog::TypeCensus& census, controls::AutoSelect& list);

}  // namespace kxrestore::dialog
