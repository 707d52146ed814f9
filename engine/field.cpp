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

ValueView Field::Value() const {
  return m_recordset->FieldValue(m_index);
}

bool Field::IsNull() const {
  return engine::IsNull(Value());
}

std::string_view Field::TextView() const {
  const ValueView value = Value();
  if (const auto* text = std::get_if<std::string_view>(&value)) return *text;
  if (engine::IsNull(value)) return {};
  Raise(kxrestore::error_number::kTypeMismatch, "Type mismatch");
}

std::string Field::Text() const {
  return ToText(Value());
}

std::int64_t Field::Integer() const {
  return ToInteger(Value());
}

bool Field::Boolean() const {
  return ToBoolean(Value());
}

void Field::Set(engine::Value value) {
  m_recordset->SetFieldValue(m_index, std::move(value));
}

}  // namespace kxrestore::engine
