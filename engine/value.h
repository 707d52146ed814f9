// Values of fields: what a back end hands out and takes back.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace kxrestore::engine {

struct DateTime {
  std::int16_t year = 0;
  std::int8_t month = 0, day = 0, hour = 0, minute = 0, second = 0;
  // clang-tidy 14 takes the comparisons of a defaulted operator for null pointers.
  friend auto operator<=>(const DateTime&, const DateTime&) = default;  // NOLINT(modernize-use-nullptr)
};

// Null, Boolean, integer, floating point, text, date. A ValueView's text belongs to the recordset and is
// valid until its next move or close.
using Value = std::variant<std::monostate, bool, std::int64_t, double, std::string, DateTime>;
using ValueView = std::variant<std::monostate, bool, std::int64_t, double, std::string_view, DateTime>;

inline bool IsNull(const ValueView& value) {
  return value.index() == 0;
}

ValueView ViewOf(const Value& value);
Value OwnedOf(const ValueView& value);

// Null converts to an empty text, 0 and false. A date's text is "YYYY-MM-DD HH:MM:SS"; how the user writes
// dates is not the engine's business. Text that is no number raises error 13, Type mismatch.
std::string ToText(const ValueView& value);
std::string ToText(const DateTime& date);
std::int64_t ToInteger(const ValueView& value);
bool ToBoolean(const ValueView& value);

// A date, or a text "YYYY-MM-DD", "YYYY-MM-DD HH:MM[:SS[.fff]]" (also with "T"); nothing for anything else.
std::optional<DateTime> ToDateTime(const ValueView& value);

// The date of these parts; nothing if there is no such day or time.
std::optional<DateTime> DateOf(int year, int month, int day, int hour, int minute, int second);
// The date that the desktop engine stores as a number: days since 1899-12-30; the fraction is the time of day
// and counts forward even before that day. Nothing outside the years 100 to 9999.
std::optional<DateTime> DateOfSerial(double serial);
double SerialOfDate(const DateTime& date);

}  // namespace kxrestore::engine
