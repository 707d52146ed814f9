#include "dialog/date_text.h"

namespace kxrestore::dialog {

namespace {

std::int32_t DayNumber(const engine::DateTime& date) {
  return (date.year * 16 + date.month) * 32 + date.day;
}

std::int32_t SecondOfDay(const engine::DateTime& date) {
  return (date.hour * 60 + date.minute) * 60 + date.second;
}

}  // namespace

std::string_view DateText::Of(const engine::ValueView& value) {
  const auto date = engine::ToDateTime(value);
  if (!date) return m_text = engine::ToText(value);

  const platform::CivilTime civil{date->year, date->month, date->day, date->hour, date->minute, date->second};
  std::string& day = m_days[DayNumber(*date)];
  if (day.empty()) day = m_regional.ShortDate(civil);
  m_text = day;
  if (const std::int32_t second = SecondOfDay(*date)) {
    std::string& time = m_times[second];
    if (time.empty()) time = m_regional.LongTime(civil);
    m_text.append(" ").append(time);
  }
  return m_text;
}

std::int64_t DateText::Key(const engine::ValueView& value) {
  const auto date = engine::ToDateTime(value);
  return date ? DayNumber(*date) * std::int64_t{86400} + SecondOfDay(*date) : INT64_MIN;
}

}  // namespace kxrestore::dialog
