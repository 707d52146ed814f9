#include "engine/value.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <limits>

#include "base/text.h"
#include "engine/error_numbers.h"

namespace kxrestore::engine {
namespace {

constexpr int kSecondsOfDay = 86400;
constexpr std::chrono::sys_days kDayZero = std::chrono::year(1899) / 12 / 30;

[[noreturn]] void RaiseTypeMismatch() {
  Raise(kxrestore::error_number::kTypeMismatch, "Type mismatch");
}

std::string_view Trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

double ParseNumber(std::string_view text) {
  text = Trimmed(text);
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) RaiseTypeMismatch();
  return number;
}

std::int64_t RoundToInteger(double number) {
  const double rounded = std::nearbyint(number);  // half to even, as the desktop engine converts
  if (!(rounded >= -9223372036854775808.0 && rounded < 9223372036854775808.0)) {
    Raise(kxrestore::error_number::kOverflow, "Overflow");
  }
  return static_cast<std::int64_t>(rounded);
}

// Reads exactly `digits` digits into `number` and moves on.
bool TakeNumber(std::string_view& text, std::size_t digits, int& number) {
  if (text.size() < digits) return false;
  const auto [end, error] = std::from_chars(text.data(), text.data() + digits, number);
  if (error != std::errc() || end != text.data() + digits || number < 0) return false;
  text.remove_prefix(digits);
  return true;
}

bool TakeCharacter(std::string_view& text, char character) {
  if (text.empty() || text.front() != character) return false;
  text.remove_prefix(1);
  return true;
}

}  // namespace

std::optional<DateTime> DateOf(int year, int month, int day, int hour, int minute, int second) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (year < 1 || year > 9999 || month < 1 || month > 12 || day < 1) return std::nullopt;
  const bool leap = month == 2 && year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
  if (day > kDays[month - 1] + (leap ? 1 : 0)) return std::nullopt;
  if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59) return std::nullopt;
  const auto small = [](int number) { return static_cast<std::int8_t>(number); };
  return DateTime{
      static_cast<std::int16_t>(year), small(month), small(day), small(hour), small(minute), small(second)};
}

std::optional<DateTime> DateOfSerial(double serial) {
  if (!(serial > -657435 && serial < 2958466)) return std::nullopt;
  auto days = static_cast<int>(serial);
  auto seconds = static_cast<int>(std::lround(std::abs(serial - days) * kSecondsOfDay));
  if (seconds >= kSecondsOfDay) {
    ++days;
    seconds = 0;
  }
  const std::chrono::year_month_day day(kDayZero + std::chrono::days(days));
  return DateOf(static_cast<int>(day.year()), static_cast<int>(static_cast<unsigned>(day.month())),
                static_cast<int>(static_cast<unsigned>(day.day())), seconds / 3600, seconds / 60 % 60,
                seconds % 60);
}

double SerialOfDate(const DateTime& date) {
  const std::chrono::year_month_day day(std::chrono::year(date.year),
                                        std::chrono::month(static_cast<unsigned>(date.month)),
                                        std::chrono::day(static_cast<unsigned>(date.day)));
  const double days = (std::chrono::sys_days(day) - kDayZero).count();
  const double time = (date.hour * 3600.0 + date.minute * 60.0 + date.second) / kSecondsOfDay;
  return days < 0 ? days - time : days + time;
}

std::string ToText(const DateTime& date) {
  std::string text = "0000-00-00 00:00:00";
  const auto put = [&](std::size_t end, std::size_t digits, int number) {
    for (; digits > 0; --digits, number /= 10) text[--end] = static_cast<char>('0' + number % 10);
  };
  put(4, 4, date.year);
  put(7, 2, date.month);
  put(10, 2, date.day);
  put(13, 2, date.hour);
  put(16, 2, date.minute);
  put(19, 2, date.second);
  return text;
}

ValueView ViewOf(const Value& value) {
  return std::visit(
      [](const auto& held) -> ValueView {
        if constexpr (std::is_same_v<std::decay_t<decltype(held)>, std::string>) {
          return std::string_view(held);
        } else {
          return held;
        }
      },
      value);
}

Value OwnedOf(const ValueView& value) {
  return std::visit(
      [](const auto& held) -> Value {
        if constexpr (std::is_same_v<std::decay_t<decltype(held)>, std::string_view>) {
          return std::string(held);
        } else {
          return held;
        }
      },
      value);
}

std::string ToText(const ValueView& value) {
  struct Visitor {
    std::string operator()(std::monostate) const { return {}; }
    std::string operator()(bool b) const { return b ? "True" : "False"; }
    std::string operator()(std::int64_t number) const { return std::to_string(number); }
    std::string operator()(double number) const {
      char buffer[40];
      std::snprintf(buffer, sizeof buffer, "%.15g", number);
      return buffer;
    }
    std::string operator()(std::string_view text) const { return std::string(text); }
    std::string operator()(const DateTime& date) const { return ToText(date); }
  };
  return std::visit(Visitor{}, value);
}

std::int64_t ToInteger(const ValueView& value) {
  struct Visitor {
    std::int64_t operator()(std::monostate) const { return 0; }
    std::int64_t operator()(bool b) const { return b ? 1 : 0; }
    std::int64_t operator()(std::int64_t number) const { return number; }
    std::int64_t operator()(double number) const { return RoundToInteger(number); }
    std::int64_t operator()(std::string_view text) const {
      const std::string_view trimmed = Trimmed(text);
      std::int64_t number = 0;
      const auto [end, error] = std::from_chars(trimmed.data(), trimmed.data() + trimmed.size(), number);
      if (error == std::errc() && end == trimmed.data() + trimmed.size()) return number;
      return RoundToInteger(ParseNumber(trimmed));
    }
    std::int64_t operator()(const DateTime&) const { RaiseTypeMismatch(); }
  };
  return std::visit(Visitor{}, value);
}

bool ToBoolean(const ValueView& value) {
  struct Visitor {
    bool operator()(std::monostate) const { return false; }
    bool operator()(bool b) const { return b; }
    bool operator()(std::int64_t number) const { return number != 0; }
    bool operator()(double number) const { return number != 0; }
    bool operator()(std::string_view text) const {
      if (EqualIgnoringCase(text, "true")) return true;
      if (EqualIgnoringCase(text, "false")) return false;
      return ParseNumber(text) != 0;
    }
    bool operator()(const DateTime&) const { RaiseTypeMismatch(); }
  };
  return std::visit(Visitor{}, value);
}

std::optional<DateTime> ToDateTime(const ValueView& value) {
  if (const DateTime* date = std::get_if<DateTime>(&value)) return *date;
  const std::string_view* source = std::get_if<std::string_view>(&value);
  if (source == nullptr) return std::nullopt;
  std::string_view text = *source;
  int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
  if (!TakeNumber(text, 4, year) || !TakeCharacter(text, '-') || !TakeNumber(text, 2, month) ||
      !TakeCharacter(text, '-') || !TakeNumber(text, 2, day)) {
    return std::nullopt;
  }
  if (!text.empty()) {
    if (!TakeCharacter(text, ' ') && !TakeCharacter(text, 'T')) return std::nullopt;
    if (!TakeNumber(text, 2, hour) || !TakeCharacter(text, ':') || !TakeNumber(text, 2, minute)) {
      return std::nullopt;
    }
    if (TakeCharacter(text, ':') && !TakeNumber(text, 2, second)) return std::nullopt;
    if (!text.empty() &&
        (!TakeCharacter(text, '.') || text.find_first_not_of("0123456789") != std::string_view::npos)) {
      return std::nullopt;
    }
  }
  return DateOf(year, month, day, hour, minute, second);
}

}  // namespace kxrestore::engine
