#include <algorithm>
#include <iterator>

#include "base/text.h"

namespace kxrestore {
namespace {

struct FoldRange {
  char32_t first, last, step;
  std::int32_t delta;
};

constexpr FoldRange kRanges[] = {
#include "base/case_folding_table.inc"
};

}  // namespace

char32_t FoldCase(char32_t character) {
  if (character < 0x80) return character >= 'A' && character <= 'Z' ? character + 32 : character;
  const FoldRange* range = std::upper_bound(std::begin(kRanges), std::end(kRanges), character,
                                            [](char32_t c, const FoldRange& r) { return c < r.first; });
  if (range == std::begin(kRanges)) return character;
  --range;
  if (character > range->last || (character - range->first) % range->step != 0) return character;
  return static_cast<char32_t>(static_cast<std::int32_t>(character) + range->delta);
}

}  // namespace kxrestore
