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
