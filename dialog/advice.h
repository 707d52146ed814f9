// Advice to the user about an error.
#pragma once

#include "base/phrases.h"

namespace kxrestore::dialog {

Phrase AdviceFor(int errorNumber);

}  // namespace kxrestore::dialog
