// Tells lists and trees which of their ticks the catalog has, once a walk has marked or unmarked files.
#pragma once

#include <cstddef>

#include "dialog/form_context.h"
#include "dialog/marking_walk.h"

namespace kxrestore::dialog {

// The ticked entries or nodes from 1 to `reached` were marked, but for those that the walk could not mark.
void SettleMarked(controls::AutoSelect& list, const MarkingWalk& walk, std::size_t reached);
void SettleMarked(controls::TreeView& tree, const MarkingWalk& walk, std::size_t reached);

// The unticked entries of the restore list from 1 to `reached` were unmarked, but for those that the walk
// could not: what is ticked for the same files elsewhere waits to be applied again.
void SettleUnmarked(FormContext& context, const MarkingWalk& walk, std::size_t reached);

// Nothing is marked any more.
void SettleNothingMarked(FormControls& ui);

}  // namespace kxrestore::dialog
