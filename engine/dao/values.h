// Conversion between automation's values and the engine's.
#pragma once

#include "engine/dao/automation.h"
#include "engine/value.h"

namespace kxrestore::engine::dao {

// A text is stored in `text`, and the view refers to it. Bytes are passed as they are. Whole currency and
// decimal values become integers. Error 13 for types that no field has.
ValueView ToValue(const VARIANT& variant, std::string& text);

Variant FromValue(const Value& value);

}  // namespace kxrestore::engine::dao
