#include "tests/faults/faults.h"

#include <sqlite3.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <stdexcept>

#include "tests/engine/hooked_files.h"

namespace kxrestore::faults {
namespace {

std::atomic<Failing> g_armed = Failing::kNothing;
std::atomic<long> g_at = 0, g_seen = 0;
std::atomic<bool> g_forever = false, g_failed = false;
thread_local int t_pauses = 0;

bool Fails(Failing here) {
  if (g_armed != here || t_pauses > 0) return false;
  const long number = ++g_seen;
  if (g_at == 0 || (g_forever ? number < g_at : number != g_at)) return false;
  g_failed = true;
  return true;
}

// ---- memory of the embedded database

sqlite3_mem_methods g_memory;

void* Allocate(int size) {
  return Fails(Failing::kDatabaseMemory) ? nullptr : g_memory.xMalloc(size);
}

void* Reallocate(void* block, int size) {
  return Fails(Failing::kDatabaseMemory) ? nullptr : g_memory.xRealloc(block, size);
}

// ---- its files

using engine::testing::FileCall;

constexpr int kErrors[] = {SQLITE_CANTOPEN,       SQLITE_IOERR_READ,   SQLITE_IOERR_WRITE,
                           SQLITE_IOERR_TRUNCATE, SQLITE_IOERR_FSYNC,  SQLITE_IOERR_FSTAT,
                           SQLITE_IOERR_LOCK,     SQLITE_IOERR_DELETE, SQLITE_IOERR_ACCESS};

int OnFileCall(const FileCall& call) {
  if (call.kind == FileCall::kWrite && Fails(Failing::kFullDisk)) return SQLITE_FULL;
  return Fails(Failing::kFiles) ? kErrors[call.kind] : SQLITE_OK;
}

void Need(int code) {
  if (code != SQLITE_OK) throw std::runtime_error("the faults cannot be installed");
}

}  // namespace

void InstallFaults() {
  Need(sqlite3_config(SQLITE_CONFIG_GETMALLOC, &g_memory));
  sqlite3_mem_methods ours = g_memory;
  ours.xMalloc = Allocate;
  ours.xRealloc = Reallocate;
  Need(sqlite3_config(SQLITE_CONFIG_MALLOC, &ours));
  Need(sqlite3_initialize());
  static const engine::testing::HookedFiles files(OnFileCall);  // for as long as the program runs
}

void Arm(Failing failing, long at, bool forever) {
  g_seen = 0;
  g_at = at;
  g_forever = forever;
  g_failed = false;
  g_armed = failing;
}

long Disarm() {
  g_armed = Failing::kNothing;
  return g_seen;
}

bool HasFailed() {
  return g_failed;
}

Pause::Pause() {
  ++t_pauses;
}

Pause::~Pause() {
  --t_pauses;
}

namespace detail {
void* New(std::size_t size) {
  if (Fails(Failing::kMemory)) throw std::bad_alloc();
  void* const block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
}  // namespace detail

}  // namespace kxrestore::faults

void* operator new(std::size_t size) {
  return kxrestore::faults::detail::New(size);
}
void* operator new[](std::size_t size) {
  return kxrestore::faults::detail::New(size);
}
void operator delete(void* block) noexcept {
  std::free(block);
}
void operator delete[](void* block) noexcept {
  std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
  std::free(block);
}
void operator delete[](void* block, std::size_t) noexcept {
  std::free(block);
}
