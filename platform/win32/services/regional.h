// Dates, times, numbers and sorting by the user's settings; the fixed formats where the system fails.
#pragma once

#include "platform/regional.h"

namespace kxrestore::win32 {

class Win32Regional final : public platform::Regional {
 public:
  std::string ShortDate(const platform::CivilTime& time) const override;
  std::string LongTime(const platform::CivilTime& time) const override;
  std::string Grouped(std::int64_t number) const override;
  std::string DecimalPoint() const override;
  void AppendSortKey(std::string& key, std::string_view text) const override;
  platform::CivilTime Now() const override;
};

}  // namespace kxrestore::win32
