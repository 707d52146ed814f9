// The bitmaps in which a file records which pages belong to what.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/jet_file/page_file.h"

namespace kxrestore::engine::jet_file {

// The numbers of the pages in a map, ascending. Error 3049 when the map is damaged or names a page beyond the
// end of the file.
std::vector<std::uint32_t> ReadUsageMap(const PageFile& file, RowPointer map);

}  // namespace kxrestore::engine::jet_file
