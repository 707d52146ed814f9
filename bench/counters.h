// Counts requests of this program to the operating system and the heap; link counters.cpp to count.
#pragma once

#include <cstdint>

namespace kxrestore::bench {

// Disk syncs (fsync and fdatasync) since the start, including SQLite's.
std::int64_t Syncs();

// Bytes currently allocated by `new`, including the heap's overhead.
std::int64_t LiveBytes();

}  // namespace kxrestore::bench
