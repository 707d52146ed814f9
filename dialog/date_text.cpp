#include "dialog/date_text.h"

namespace kxrestore::dialog {

std::string DateText(const platform::Regional& regional, const engine::ValueView& value) {
  const auto date = engine::ToDateTime(value);
  if (!date) return engine::ToText(value);
  const platform::CivilTime time{date->year, date->month, date->day, date->hour, date->minute, date->second};
  std::string text = regional.ShortDate(time);
  if (time.hour != 0 || time.minute != 0 || time.second != 0)
    text.append(" ").append(regional.LongTime(time));
  return text;
}

std::int64_t DateKey(const engine::ValueView& value) {
  const auto date = engine::ToDateTime(value);
  if (!date) return 0;
  const std::int64_t days = (std::int64_t{date->year} * 12 + date->month) * 31 + date->day;
  return ((days * 24 + date->hour) * 60 + date->minute) * 60 + date->second;
}

}  // namespace kxrestore::dialog
