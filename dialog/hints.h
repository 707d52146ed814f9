// What empty lists and trees say: why they are empty and what to do.
#pragma once

#include <cstdint>
#include <string>

#include "dialog/form_context.h"

namespace kxrestore::dialog::hints {

// Before anything has happened.
void BeforeAnything(FormControls& ui);

// The detail tree, after a run was loaded or as far as that went.
enum class Loaded { kWhole, kStopped, kFailed };
void AfterLoad(FormControls& ui, Loaded loaded);

// The search list: nothing looked for yet, or nothing found.
void BeforeSearch(FormControls& ui);
void NothingFound(FormControls& ui, const std::string& mask, bool inThisSet);

// The restore list: `marked` files of which it lists none.
void EarlierMarks(FormContext& context, std::int64_t marked);
void NothingMarked(FormControls& ui);

}  // namespace kxrestore::dialog::hints
