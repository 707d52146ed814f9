#include "bench/counters.h"

#include <malloc.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdlib>
#include <new>

namespace kxrestore::bench {

namespace {

std::int64_t g_syncs = 0;
std::int64_t g_liveBytes = 0;

constexpr std::int64_t kHeapHeader = 8;

void* Take(std::size_t size) {
  void* block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) throw std::bad_alloc();
  g_liveBytes += static_cast<std::int64_t>(malloc_usable_size(block)) + kHeapHeader;
  return block;
}

void Free(void* block) {
  if (block == nullptr) return;
  g_liveBytes -= static_cast<std::int64_t>(malloc_usable_size(block)) + kHeapHeader;
  std::free(block);
}

}  // namespace

std::int64_t Syncs() {
  return g_syncs;
}
std::int64_t LiveBytes() {
  return g_liveBytes;
}

namespace detail {
int CountedSync(long number, int file) {
  ++g_syncs;
  return static_cast<int>(syscall(number, file));
}
}  // namespace detail

}  // namespace kxrestore::bench

// The program's own definitions come before the system library's, for the shared database library too.
extern "C" int fsync(int file) {
  return kxrestore::bench::detail::CountedSync(SYS_fsync, file);
}
extern "C" int fdatasync(int file) {
  return kxrestore::bench::detail::CountedSync(SYS_fdatasync, file);
}

void* operator new(std::size_t size) {
  return kxrestore::bench::Take(size);
}
void operator delete(void* block) noexcept {
  kxrestore::bench::Free(block);
}
void operator delete(void* block, std::size_t) noexcept {
  kxrestore::bench::Free(block);
}
