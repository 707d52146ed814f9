#include "platform/regional.h"

#include <gtest/gtest.h>

#include <limits>

namespace kxrestore::platform {
namespace {

TEST(FixedRegional, DatesAndTimes) {
  const FixedRegional regional;
  EXPECT_EQ("11/16/2026", regional.ShortDate({2026, 11, 16}));
  EXPECT_EQ("1/2/2024", regional.ShortDate({2024, 1, 2, 23, 59, 59}));
  EXPECT_EQ("2:25:30 AM", regional.LongTime({2026, 11, 16, 2, 25, 30}));
  EXPECT_EQ("12:00:00 AM", regional.LongTime({}));
  EXPECT_EQ("11:59:59 AM", regional.LongTime({0, 0, 0, 11, 59, 59}));
  EXPECT_EQ("12:00:09 PM", regional.LongTime({0, 0, 0, 12, 0, 9}));
  EXPECT_EQ("11:05:00 PM", regional.LongTime({0, 0, 0, 23, 5, 0}));
}

TEST(Regional, ATimeAndItsNumber) {
  const FixedRegional regional;
  const CivilTime times[] = {
      {0, 0, 0}, {1753, 1, 1}, {2026, 2, 28, 23, 59, 59}, {2026, 3, 1}, {9999, 12, 31, 23, 59, 58}};
  for (std::size_t i = 0; i < std::size(times); ++i) {
    const std::int64_t number = TimeNumber(times[i]);
    EXPECT_EQ(DateAndTime(regional, times[i]), DateAndTime(regional, TimeOfNumber(number)));
    if (i > 0) {
      EXPECT_LT(TimeNumber(times[i - 1]), number);
    }
  }
  EXPECT_EQ("2/28/2026 11:59:59 PM", DateAndTime(regional, times[2]));
  EXPECT_EQ("3/1/2026", DateAndTime(regional, times[3]));
}

TEST(FixedRegional, Numbers) {
  const FixedRegional regional;
  EXPECT_EQ("0", regional.Grouped(0));
  EXPECT_EQ("999", regional.Grouped(999));
  EXPECT_EQ("1,000", regional.Grouped(1000));
  EXPECT_EQ("123,456", regional.Grouped(123456));
  EXPECT_EQ("-999", regional.Grouped(-999));
  EXPECT_EQ("-123,456", regional.Grouped(-123456));
  EXPECT_EQ("-9,223,372,036,854,775,808", regional.Grouped(std::numeric_limits<std::int64_t>::min()));
}

}  // namespace
}  // namespace kxrestore::platform
