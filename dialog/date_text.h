// Dates of the catalog as the user writes them: short date, blank, long time; the date alone at midnight.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

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

  // Orders by time what Of was last called with; what is no date comes first.
  std::int64_t Key() const { return m_key; }

 private:
  const platform::Regional& m_regional;
  std::unordered_map<std::int32_t, std::string> m_days;
  std::vector<std::string> m_times;  // by second of the day
  std::int64_t m_key = INT64_MIN;
  std::string m_text;
};

}  // namespace kxrestore::dialog
