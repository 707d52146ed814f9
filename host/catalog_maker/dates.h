// Dates without a time zone, counted in seconds since 1970.
#pragma once

#include <cstdint>
#include <string>

namespace kxrestore::sample {

inline constexpr std::int64_t kDay = 24 * 60 * 60;

std::int64_t Seconds(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);
std::string DateText(std::int64_t seconds);  // 'YYYY-MM-DD HH:MM:SS'

}  // namespace kxrestore::sample
