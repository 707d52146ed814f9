#include "host/catalog_maker/dates.h"

#include <chrono>

namespace kxrestore::sample {

namespace {

void PutDigits(std::string& text, std::size_t position, unsigned value, int count) {
  for (int i = count - 1; i >= 0; --i, value /= 10) text[position + i] = static_cast<char>('0' + value % 10);
}

}  // namespace

std::int64_t Seconds(int year, int month, int day, int hour, int minute, int second) {
  const std::chrono::sys_days days{std::chrono::year{year} / month / day};
  return days.time_since_epoch().count() * kDay + hour * 3600 + minute * 60 + second;
}

std::string DateText(std::int64_t seconds) {
  const std::chrono::sys_days days{std::chrono::days{seconds / kDay}};
  const std::chrono::year_month_day date{days};
  const auto rest = static_cast<unsigned>(seconds % kDay);
  std::string text = "0000-00-00 00:00:00";
  PutDigits(text, 0, static_cast<unsigned>(static_cast<int>(date.year())), 4);
  PutDigits(text, 5, static_cast<unsigned>(date.month()), 2);
  PutDigits(text, 8, static_cast<unsigned>(date.day()), 2);
  PutDigits(text, 11, rest / 3600, 2);
  PutDigits(text, 14, rest / 60 % 60, 2);
  PutDigits(text, 17, rest % 60, 2);
  return text;
}

}  // namespace kxrestore::sample
