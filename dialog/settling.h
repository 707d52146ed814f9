// Updates the pending ticks of lists and trees after the marks in the catalog have changed.
#pragma once

#include <cstddef>

#include "dialog/form_context.h"
#include "dialog/marking_walk.h"

namespace kxrestore::dialog {

// The ticked entries or nodes from 1 to `reached` are marked, except those that the walk could not mark.
void SettleMarked(controls::AutoSelect& list, const MarkingWalk& walk, std::size_t reached);
void SettleMarked(controls::TreeView& tree, const MarkingWalk& walk, std::size_t reached);

// The unticked entries of the restore list from 1 to `reached` are unmarked, except those that the walk could
// not unmark. Ticks for the same files elsewhere become pending.
void SettleUnmarked(FormContext& context, const MarkingWalk& walk, std::size_t reached);

// Ticks for the files of the restore list, just filled from the catalog, are no longer pending anywhere,
// whichever walk has marked them.
void SettleListed(FormContext& context);

// Nothing is marked any more.
void SettleNothingMarked(FormControls& ui);

}  // namespace kxrestore::dialog
