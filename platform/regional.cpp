#include "platform/regional.h"

#include <ctime>

namespace kxrestore::platform {

namespace {

std::string TwoDigits(int number) {
  std::string text = std::to_string(number);
  if (text.size() < 2) text.insert(0, 1, '0');
  return text;
}

}  // namespace

SortKey SortKeyOf(const Regional& regional) {
  return [&regional](std::string& key, std::string_view text) { regional.AppendSortKey(key, text); };
}

std::string DateAndTime(const Regional& regional, const CivilTime& time) {
  std::string text = regional.ShortDate(time);
  if (time.hour != 0 || time.minute != 0 || time.second != 0)
    text.append(" ").append(regional.LongTime(time));
  return text;
}

std::int64_t TimeNumber(const CivilTime& time) {
  const std::int64_t day = (std::int64_t{time.year} * 16 + time.month) * 32 + time.day;
  return ((day * 32 + time.hour) * 64 + time.minute) * 64 + time.second;
}

CivilTime TimeOfNumber(std::int64_t number) {
  const auto take = [&number](std::int64_t places) {
    const auto part = static_cast<int>(number % places);
    number /= places;
    return part;
  };
  CivilTime time;
  time.second = take(64);
  time.minute = take(64);
  time.hour = take(32);
  time.day = take(32);
  time.month = take(16);
  time.year = static_cast<int>(number);
  return time;
}

std::string FixedRegional::ShortDate(const CivilTime& time) const {
  return std::to_string(time.month) + "/" + std::to_string(time.day) + "/" + std::to_string(time.year);
}

std::string FixedRegional::LongTime(const CivilTime& time) const {
  const int hour = time.hour % 12 == 0 ? 12 : time.hour % 12;
  return std::to_string(hour) + ":" + TwoDigits(time.minute) + ":" + TwoDigits(time.second) +
         (time.hour < 12 ? " AM" : " PM");
}

std::string FixedRegional::Grouped(std::int64_t number) const {
  std::string text = std::to_string(number);
  const std::size_t first = number < 0 ? 1 : 0;
  for (std::size_t place = text.size(); place > first + 3;) text.insert(place -= 3, 1, ',');
  return text;
}

CivilTime FixedRegional::Now() const {
  const std::time_t now = std::time(nullptr);
  const std::tm* const local = std::localtime(&now);
  if (local == nullptr) return {};
  return {local->tm_year + 1900, local->tm_mon + 1, local->tm_mday,
          local->tm_hour,        local->tm_min,     local->tm_sec};
}

}  // namespace kxrestore::platform
