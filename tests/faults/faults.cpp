#include "tests/faults/faults.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>
#include <stdexcept>

#include "tests/engine/hooked_files.h"
#include "tests/faults/told.h"

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

void* New(std::size_t size) {
  void* const block = Fails(Failing::kMemory) ? nullptr : std::malloc(std::max<std::size_t>(size, 1));
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

sqlite3_mem_methods g_memory;  // SQLite's own

using engine::testing::FileCall;

int OnFileCall(const FileCall& call) {
  constexpr int kErrors[] = {SQLITE_CANTOPEN,       SQLITE_IOERR_READ,   SQLITE_IOERR_WRITE,
                             SQLITE_IOERR_TRUNCATE, SQLITE_IOERR_FSYNC,  SQLITE_IOERR_FSTAT,
                             SQLITE_IOERR_LOCK,     SQLITE_IOERR_DELETE, SQLITE_IOERR_ACCESS};
  if (call.kind == FileCall::kWrite && Fails(Failing::kFullDisk)) return SQLITE_FULL;
  return Fails(Failing::kFiles) ? kErrors[call.kind] : SQLITE_OK;
}

// SQLite accepts hooks for its memory only before its first use.
class Hooks : public ::testing::Environment {
  void SetUp() override {
    sqlite3_config(SQLITE_CONFIG_GETMALLOC, &g_memory);
    sqlite3_mem_methods ours = g_memory;
    ours.xMalloc = [](int size) {
      return Fails(Failing::kDatabaseMemory) ? nullptr : g_memory.xMalloc(size);
    };
    ours.xRealloc = [](void* block, int size) {
      return Fails(Failing::kDatabaseMemory) ? nullptr : g_memory.xRealloc(block, size);
    };
    if (sqlite3_config(SQLITE_CONFIG_MALLOC, &ours) != SQLITE_OK || sqlite3_initialize() != SQLITE_OK) {
      throw std::runtime_error("the faults cannot be installed");
    }
    static const engine::testing::HookedFiles files(OnFileCall);  // until the program ends
  }
};

[[maybe_unused]] const auto* const g_hooks = ::testing::AddGlobalTestEnvironment(new Hooks);

}  // namespace

const char* NameOf(Failing failing) {
  constexpr const char* kNames[] = {"nothing", "memory", "the database's memory", "its files", "a full disk"};
  return kNames[static_cast<int>(failing)];
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

void Sweep(long sample, const std::function<long(long at, bool forever)>& trial) {
  const auto* const result = ::testing::UnitTest::GetInstance()->current_test_info()->result();
  for (const bool forever : {false, true}) {
    const long calls = trial(0, false);
    const long distance = std::max(1L, calls / sample / static_cast<long>(Times()));
    for (long at = 1 + static_cast<long>(Seed()) % distance; at <= calls; at += distance) {
      trial(at, forever);
      if (result->total_part_count() > 40) return;
    }
  }
}

Pause::Pause() {
  ++t_pauses;
}

Pause::~Pause() {
  --t_pauses;
}

}  // namespace kxrestore::faults

// The forms for arrays, which this program does not use, call these.
void* operator new(std::size_t size) {
  return kxrestore::faults::New(size);
}
void operator delete(void* block) noexcept {
  std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
  std::free(block);
}
