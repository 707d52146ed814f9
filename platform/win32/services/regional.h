// Dates, times and numbers by the user's settings. A time that the system cannot show is written in the fixed
// forms.
#pragma once

#include "platform/regional.h"

namespace kxrestore::win32 {

class Win32Regional final : public platform::Regional {
 public:
  std::string ShortDate(const platform::CivilTime& time) const override;
  std::string LongTime(const platform::CivilTime& time) const override;
  std::string Grouped(std::int64_t number) const override;
  std::string DecimalPoint() const override;
  platform::CivilTime Now() const override;
};

}  // namespace kxrestore::win32
