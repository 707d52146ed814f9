#include "engine/jet_file/usage_map.h"

#include <bit>
#include <string>

namespace kxrestore::engine::jet_file {
namespace {

void AppendPages(const PageFile& file, const Bytes& bitmap, std::uint64_t first,
                 std::vector<std::uint32_t>& pages) {
  for (std::size_t i = 0; i < bitmap.Size(); ++i) {
    for (unsigned bits = bitmap.U8(i); bits != 0; bits &= bits - 1) {
      const std::uint64_t page = first + 8 * i + static_cast<unsigned>(std::countr_zero(bits));
      if (page >= file.PageCount()) {
        file.RaiseDamaged("page " + std::to_string(page) + " lies beyond its end");
      }
      pages.push_back(static_cast<std::uint32_t>(page));
    }
  }
}

}  // namespace

std::vector<std::uint32_t> ReadUsageMap(const PageFile& file, RowPointer pointer) {
  const Page holder = file.Read(pointer.page, PageType::kData);
  const Bytes map = file.Row(holder, pointer.slot);
  std::vector<std::uint32_t> pages;
  switch (map.U8(0)) {
    case 0:
      AppendPages(file, map.From(5), map.U32(1), pages);
      break;
    case 1: {
      const std::uint64_t pagesOfMap = std::uint64_t{file.Format().pageSize - 4} * 8;
      std::uint64_t first = 0;
      for (std::size_t i = 1; i + 4 <= map.Size(); i += 4, first += pagesOfMap) {
        const std::uint32_t number = map.U32(i);
        if (number == 0) continue;
        const Page page = file.Read(number, PageType::kUsageMap);
        AppendPages(file, page.Content().From(4), first, pages);
      }
      break;
    }
    default:
      file.RaiseDamaged("a map of pages is of kind " + std::to_string(map.U8(0)));
  }
  return pages;
}

}  // namespace kxrestore::engine::jet_file
