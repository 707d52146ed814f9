#include "engine/value.h"

#include <gtest/gtest.h>

#include "engine/jet_sql/reading/date_literal.h"
#include "engine/row_store.h"
#include "tests/raises.h"

namespace kxrestore::engine {
namespace {

using namespace std::string_view_literals;

TEST(Value, Converts) {
  EXPECT_EQ(ToText(ValueView(std::int64_t{-12})), "-12");
  EXPECT_EQ(ToText(ValueView(1.5)), "1.5");
  EXPECT_EQ(ToText(ValueView(true)), "True");
  EXPECT_EQ(ToInteger(" 42 "sv), 42);
  EXPECT_EQ(ToInteger("2.5"sv), 2) << "half to even";
  EXPECT_EQ(ToInteger(ValueView()), 0);
  EXPECT_TRUE(ToBoolean("-1"sv));
  EXPECT_TRUE(ToBoolean("TRUE"sv));
  EXPECT_FALSE(ToBoolean("false"sv));
  EXPECT_FALSE(ToBoolean(ValueView()));
  EXPECT_RAISES(13, ToInteger("12a"sv));
  EXPECT_RAISES(13, ToInteger(""sv));
  EXPECT_RAISES(6, ToInteger("1e300"sv));
  EXPECT_RAISES(13, ToInteger(ValueView(DateTime{})));
}

template <typename Read>
void ExpectDates(Read read, std::initializer_list<std::pair<const char*, const char*>> dates,
                 std::initializer_list<const char*> wrong) {
  for (const auto& [source, expected] : dates) {
    const auto date = read(source);
    ASSERT_TRUE(date) << source;
    EXPECT_EQ(ToText(*date), expected);
  }
  for (const char* source : wrong) EXPECT_FALSE(read(source)) << source;
}

TEST(Value, ReadsDates) {
  ExpectDates([](std::string_view stored) { return ToDateTime(stored); },
              {{"2026-11-16", "2026-11-16 00:00:00"},
               {"2026-11-16 02:25:30", "2026-11-16 02:25:30"},
               {"2026-11-16T02:25", "2026-11-16 02:25:00"},
               {"2024-02-29 23:59:59.123", "2024-02-29 23:59:59"}},
              {"", "2026", "2026-13-01", "2025-02-29", "2026-11-16 24:00", "2026-11-16x", "11/16/2026",
               "2026-11-16 02:25:30 ", "2026-11-16 02:25:30.x", "-026-11-16", "2026-11-16 1:02"});
  ExpectDates([](std::string_view literal) { return jet_sql::ParseDateLiteral(literal); },
              {{"11/16/2026", "2026-11-16 00:00:00"},
               {" 1/2/2026 2:05:30 PM ", "2026-01-02 14:05:30"},
               {"1/2/2026 12:00 AM", "2026-01-02 00:00:00"},
               {"1/2/2026 12:00 pm", "2026-01-02 12:00:00"},
               {"2026-11-16 14:00", "2026-11-16 14:00:00"},
               {"1/2/98", "1998-01-02 00:00:00"},
               {"3:04", "1899-12-30 03:04:00"}},
              {"", "13/1/2026", "2/30/2026", "1/2", "1/2/2026 25:00", "1/2/2026 13:00 PM", "x", "1/2/2026 3",
               "1/2/2026 3:04 PM x", "99999/1/1"});
}

TEST(RowStore, ADroppedRowLeavesNothing) {
  RowStore rows;
  for (const std::int64_t row : {1, 2, 3}) {
    rows.BeginRow();
    rows.Append(row);
    if (row != 3) rows.Append("text"sv);
    if (row == 2) rows.DropRow();
  }
  std::vector<ValueView> values;
  ASSERT_TRUE(rows.Next(values, 2));
  ASSERT_TRUE(rows.Next(values, 1));
  EXPECT_EQ(values.front(), ValueView(std::int64_t{3}));
  EXPECT_FALSE(rows.Next(values, 1));
}

}  // namespace
}  // namespace kxrestore::engine
