#include "tests/faults/faults.h"

#include <sqlite3.h>

#include <atomic>
#include <cstdlib>
#include <map>
#include <new>
#include <stdexcept>

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

sqlite3_vfs* g_real = nullptr;
sqlite3_vfs g_vfs;
sqlite3_io_methods g_methods;                                    // of the system's, those that are replaced
std::map<const sqlite3_io_methods*, sqlite3_io_methods> g_ours;  // with ours in them, by the system's

int Read(sqlite3_file* file, void* to, int size, sqlite3_int64 at) {
  return Fails(Failing::kFiles) ? SQLITE_IOERR_READ : g_methods.xRead(file, to, size, at);
}

int Write(sqlite3_file* file, const void* from, int size, sqlite3_int64 at) {
  if (Fails(Failing::kFullDisk)) return SQLITE_FULL;
  return Fails(Failing::kFiles) ? SQLITE_IOERR_WRITE : g_methods.xWrite(file, from, size, at);
}

int Truncate(sqlite3_file* file, sqlite3_int64 size) {
  return Fails(Failing::kFiles) ? SQLITE_IOERR_TRUNCATE : g_methods.xTruncate(file, size);
}

int Sync(sqlite3_file* file, int flags) {
  return Fails(Failing::kFiles) ? SQLITE_IOERR_FSYNC : g_methods.xSync(file, flags);
}

int FileSize(sqlite3_file* file, sqlite3_int64* size) {
  return Fails(Failing::kFiles) ? SQLITE_IOERR_FSTAT : g_methods.xFileSize(file, size);
}

int Lock(sqlite3_file* file, int level) {
  return Fails(Failing::kFiles) ? SQLITE_IOERR_LOCK : g_methods.xLock(file, level);
}

int Open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
  file->pMethods = nullptr;
  if (Fails(Failing::kFiles)) return SQLITE_CANTOPEN;
  const int code = g_real->xOpen(g_real, name, file, flags, outFlags);
  if (file->pMethods == nullptr) return code;
  const Pause pause;
  g_methods = *file->pMethods;
  sqlite3_io_methods& ours = g_ours[file->pMethods] = g_methods;
  ours.xRead = Read;
  ours.xWrite = Write;
  ours.xTruncate = Truncate;
  ours.xSync = Sync;
  ours.xFileSize = FileSize;
  ours.xLock = Lock;
  file->pMethods = &ours;
  return code;
}

int Delete(sqlite3_vfs*, const char* name, int syncFolder) {
  return Fails(Failing::kFiles) ? SQLITE_IOERR_DELETE : g_real->xDelete(g_real, name, syncFolder);
}

int Access(sqlite3_vfs*, const char* name, int flags, int* result) {
  return Fails(Failing::kFiles) ? SQLITE_IOERR_ACCESS : g_real->xAccess(g_real, name, flags, result);
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
  g_real = sqlite3_vfs_find(nullptr);
  g_vfs = *g_real;
  g_vfs.zName = "faults";
  g_vfs.pNext = nullptr;
  g_vfs.xOpen = Open;
  g_vfs.xDelete = Delete;
  g_vfs.xAccess = Access;
  Need(sqlite3_vfs_register(&g_vfs, 1));
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
