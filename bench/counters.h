// What the operating system and the heap were asked for by this program; link counters.cpp to count.
#pragma once

#include <cstdint>

namespace kxrestore::bench {

// Disk syncs (fsync and fdatasync) since the start, the database library's included.
std::int64_t Syncs();

// Bytes that `new` has given out and that were not given back yet, with what the heap adds to a block.
std::int64_t LiveBytes();

}  // namespace kxrestore::bench
