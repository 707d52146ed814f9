#include "dialog/date_text.h"

namespace kxrestore::dialog {

namespace {

constexpr std::int32_t kSecondsADay = 86400;

std::int32_t DayNumber(const engine::DateTime& date) {
  return (date.year * 16 + date.month) * 32 + date.day;
}

std::int32_t SecondOfDay(const engine::DateTime& date) {
  return (date.hour * 60 + date.minute) * 60 + date.second;
}

}  // namespace

std::string_view DateText::Of(const engine::ValueView& value) {
  const auto date = engine::ToDateTime(value);
  m_key = INT64_MIN;
  if (!date) return m_text = engine::ToText(value);

  const std::int32_t dayNumber = DayNumber(*date), second = SecondOfDay(*date);
  m_key = dayNumber * std::int64_t{kSecondsADay} + second;
  const platform::CivilTime civil{date->year, date->month, date->day, date->hour, date->minute, date->second};
  std::string& day = m_days[dayNumber];
  if (day.empty()) day = m_regional.ShortDate(civil);
  m_text = day;
  if (second != 0) {
    if (m_times.empty()) m_times.resize(kSecondsADay);
    std::string& time = m_times.at(static_cast<std::size_t>(second));
    if (time.empty()) time = m_regional.LongTime(civil);
    m_text.append(" ").append(time);
  }
  return m_text;
}

}  // namespace kxrestore::dialog
