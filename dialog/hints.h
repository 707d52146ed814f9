// The texts in empty lists and trees: why they are empty and what to do.
#pragma once

#include <cstdint>
#include <string>

#include "dialog/form_context.h"

namespace kxrestore::dialog::hints {

// When the form loads.
void BeforeAnything(FormControls& ui);

// The detail tree, after loading a run.
enum class Loaded { kWhole, kStopped, kFailed };
void AfterLoad(FormControls& ui, Loaded loaded);

// The search list: before a search, and after one without hits.
void BeforeSearch(FormControls& ui);
void NothingFound(FormControls& ui, const std::string& mask, bool inThisSet);

// The restore list: `marked` files are marked from an earlier session, some are marked since it was last
// filled, or none is marked.
void EarlierMarks(FormContext& context, std::int64_t marked);
void UnlistedMarks(FormControls& ui);
void NothingMarked(FormControls& ui);

}  // namespace kxrestore::dialog::hints
