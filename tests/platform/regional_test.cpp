#include "platform/regional.h"

#include <gtest/gtest.h>

#include <limits>

namespace kxrestore::platform {
namespace {

TEST(FixedRegional, DatesTimesAndNumbers) {
  const FixedRegional regional;
  const std::pair<CivilTime, const char*> times[] = {{{1753, 1, 1, 0, 0, 0}, "1/1/1753"},
                                                     {{2024, 1, 2, 12, 0, 9}, "1/2/2024 12:00:09 PM"},
                                                     {{2026, 2, 28, 23, 5, 0}, "2/28/2026 11:05:00 PM"},
                                                     {{2026, 3, 1, 0, 0, 1}, "3/1/2026 12:00:01 AM"},
                                                     {{2026, 11, 16, 2, 25, 30}, "11/16/2026 2:25:30 AM"},
                                                     {{9999, 12, 31, 11, 59, 58}, "12/31/9999 11:59:58 AM"}};
  std::int64_t last = TimeNumber({});
  for (const auto& [time, text] : times) {
    EXPECT_EQ(text, DateAndTime(regional, time));
    EXPECT_EQ(text, DateAndTime(regional, TimeOfNumber(TimeNumber(time))));
    EXPECT_LT(last, TimeNumber(time));
    last = TimeNumber(time);
  }
  const std::pair<std::int64_t, const char*> numbers[] = {
      {0, "0"},
      {999, "999"},
      {1000, "1,000"},
      {123456, "123,456"},
      {-999, "-999"},
      {-123456, "-123,456"},
      {std::numeric_limits<std::int64_t>::min(), "-9,223,372,036,854,775,808"}};
  for (const auto& [number, text] : numbers) EXPECT_EQ(text, regional.Grouped(number));
}

}  // namespace
}  // namespace kxrestore::platform
