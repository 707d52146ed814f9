// The errors that controls raise, with their texts.
#pragma once

#include "base/error.h"

namespace kxrestore::controls {

[[noreturn]] inline void ThrowOverflow() {
  throw Error(error_number::kOverflow, "Overflow");
}
[[noreturn]] inline void ThrowSubscriptOutOfRange() {
  throw Error(error_number::kSubscriptOutOfRange, "Subscript out of range");
}
[[noreturn]] inline void ThrowTypeMismatch() {
  throw Error(error_number::kTypeMismatch, "Type mismatch");
}
[[noreturn]] inline void ThrowObjectVariableNotSet() {
  throw Error(error_number::kObjectVariableNotSet, "Object variable or With block variable not set");
}
[[noreturn]] inline void ThrowInvalidPropertyValue() {
  throw Error(error_number::kInvalidPropertyValue, "Invalid property value");
}
[[noreturn]] inline void ThrowIndexOutOfBounds() {
  throw Error(error_number::kIndexOutOfBounds, "Index out of bounds");
}
[[noreturn]] inline void ThrowElementNotFound() {
  throw Error(error_number::kElementNotFound, "Element not found");
}
[[noreturn]] inline void ThrowKeyNotUnique() {
  throw Error(error_number::kKeyNotUnique, "Key is not unique in collection");
}

}  // namespace kxrestore::controls
