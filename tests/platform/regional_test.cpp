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
