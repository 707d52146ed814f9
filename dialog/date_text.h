// Dates of the catalog as the user writes them: short date, blank, long time; the date alone at midnight.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

#include "engine/value.h"
#include "platform/regional.h"

namespace kxrestore::dialog {

// Made for one walk over many rows: each day and each time of day is put into words once.
class DateText {
 public:
  explicit DateText(const platform::Regional& regional) : m_regional(regional) {}

  // The text stays as it is until the next call. A value that is no date is given as its own text, Null as an
  // empty one.
  std::string_view Of(const engine::ValueView& value);

  // Orders dates by time; what is no date comes first.
  static std::int64_t Key(const engine::ValueView& value);

 private:
  const platform::Regional& m_regional;
  std::unordered_map<std::int32_t, std::string> m_days;
  std::unordered_map<std::int32_t, std::string> m_times;
  std::string m_text;
};

}  // namespace kxrestore::dialog
