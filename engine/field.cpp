#include "base/text.h"
#include "engine/database.h"
#include "engine/error_numbers.h"

namespace kxrestore::engine {

Field Recordset::Fields(std::string_view name) {
  const std::size_t count = FieldCount();
  for (std::size_t i = 0; i < count; ++i) {
    if (EqualIgnoringCase(FieldName(i), name)) return Field(*this, i);
  }
  RaiseItemNotFound(name);
}

std::string_view Field::TextView() const {
  const ValueView value = Value();
  if (const auto* text = std::get_if<std::string_view>(&value)) return *text;
  if (engine::IsNull(value)) return {};
  Raise(kxrestore::error_number::kTypeMismatch, "Type mismatch");
}

}  // namespace kxrestore::engine
