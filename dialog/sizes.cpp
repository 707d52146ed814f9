#include "dialog/sizes.h"

#include <array>
#include <cmath>

#include "base/phrases.h"

namespace kxrestore::dialog {

std::string SizeInPeoplesUnits(const platform::Regional& regional, std::int64_t bytes) {
  constexpr std::array kUnits{Phrase::kSizeKB, Phrase::kSizeMB, Phrase::kSizeGB, Phrase::kSizeTB};
  constexpr std::int64_t kStep = 1024;
  if (bytes < kStep) return Say(Phrase::kSizeBytes, {regional.Grouped(bytes)});
  std::size_t unit = 0;
  double size = static_cast<double>(bytes) / kStep;
  // A size that would round up to 1,024 takes the next unit.
  while (size >= kStep - 0.5 && unit + 1 < kUnits.size()) {
    size /= kStep;
    ++unit;
  }
  const auto tenths = std::llround(size * 10);
  std::string number = regional.Grouped(tenths >= 100 ? std::llround(size) : tenths / 10);
  if (tenths < 100 && tenths % 10 != 0) number += regional.DecimalPoint() + std::to_string(tenths % 10);
  return Say(kUnits[unit], {number});
}

}  // namespace kxrestore::dialog
