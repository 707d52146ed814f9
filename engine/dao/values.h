// Between automation's values and the engine's.
#pragma once

#include "engine/dao/automation.h"
#include "engine/value.h"

namespace kxrestore::engine::dao {

// A text is put into `text`, which the view then points into. Bytes come as they are. A currency or decimal
// value that is whole is an integer. Error 13 for what no field can hold.
ValueView ToValue(const VARIANT& variant, std::string& text);

Variant FromValue(const Value& value);

}  // namespace kxrestore::engine::dao
