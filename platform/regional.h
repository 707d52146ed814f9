// How the user writes dates, times and numbers, and sorts texts.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/sorting.h"

namespace kxrestore::platform {

struct CivilTime {
  int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
};

class Regional {
 public:
  virtual ~Regional() = default;
  virtual std::string ShortDate(const CivilTime& time) const = 0;  // 11/16/2026
  virtual std::string LongTime(const CivilTime& time) const = 0;   // 2:25:30 AM
  virtual std::string Grouped(std::int64_t number) const = 0;      // 1,234,567
  virtual std::string DecimalPoint() const { return "."; }
  // In the user's language; numbers within a text count as numbers.
  virtual void AppendSortKey(std::string& key, std::string_view text) const {
    kxrestore::AppendSortKey(key, text);
  }
  virtual CivilTime Now() const = 0;  // local time
};

// Calls AppendSortKey of `regional`, which must outlive the key.
SortKey SortKeyOf(const Regional& regional);

// Short date, blank, long time; the date alone at midnight.
std::string DateAndTime(const Regional& regional, const CivilTime& time);

// A time as a number: later times have greater ones.
std::int64_t TimeNumber(const CivilTime& time);
CivilTime TimeOfNumber(std::int64_t number);

// The formats used without regional settings.
class FixedRegional : public Regional {
 public:
  std::string ShortDate(const CivilTime& time) const override;
  std::string LongTime(const CivilTime& time) const override;
  std::string Grouped(std::int64_t number) const override;
  CivilTime Now() const override;
};

}  // namespace kxrestore::platform
