#include "tests/engine/watched_files.h"

#include <sqlite3.h>

#include <cstddef>

namespace kxrestore::engine::testing {
namespace {

// SQLite gives the memory: our part first, the real file behind it.
struct WatchedFile {
  sqlite3_file base;
  sqlite3_file* Real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

sqlite3_vfs* g_real = nullptr;
sqlite3_vfs g_watched;
int g_syncs = 0;
bool g_full = false;

WatchedFile* Watched(sqlite3_file* file) {
  return reinterpret_cast<WatchedFile*>(file);
}
sqlite3_file* Real(sqlite3_file* file) {
  return Watched(file)->Real();
}
const sqlite3_io_methods& Methods(sqlite3_file* file) {
  return *Real(file)->pMethods;
}

int Close(sqlite3_file* file) {
  return Methods(file).xClose(Real(file));
}
int Read(sqlite3_file* file, void* to, int size, sqlite3_int64 at) {
  return Methods(file).xRead(Real(file), to, size, at);
}
int Write(sqlite3_file* file, const void* from, int size, sqlite3_int64 at) {
  return g_full ? SQLITE_FULL : Methods(file).xWrite(Real(file), from, size, at);
}
int Truncate(sqlite3_file* file, sqlite3_int64 size) {
  return Methods(file).xTruncate(Real(file), size);
}
int Sync(sqlite3_file* file, int flags) {
  ++g_syncs;
  return Methods(file).xSync(Real(file), flags);
}
int FileSize(sqlite3_file* file, sqlite3_int64* size) {
  return Methods(file).xFileSize(Real(file), size);
}
int Lock(sqlite3_file* file, int level) {
  return Methods(file).xLock(Real(file), level);
}
int Unlock(sqlite3_file* file, int level) {
  return Methods(file).xUnlock(Real(file), level);
}
int CheckReserved(sqlite3_file* file, int* reserved) {
  return Methods(file).xCheckReservedLock(Real(file), reserved);
}
int Control(sqlite3_file* file, int operation, void* argument) {
  return Methods(file).xFileControl(Real(file), operation, argument);
}
int SectorSize(sqlite3_file* file) {
  return Methods(file).xSectorSize(Real(file));
}
int Characteristics(sqlite3_file* file) {
  return Methods(file).xDeviceCharacteristics(Real(file));
}

const sqlite3_io_methods kMethods = {1,       Close,      Read,           Write,  Truncate,
                                     Sync,    FileSize,   Lock,           Unlock, CheckReserved,
                                     Control, SectorSize, Characteristics};

int Open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
  Real(file)->pMethods = nullptr;
  const int code = g_real->xOpen(g_real, name, Real(file), flags, outFlags);
  file->pMethods = Real(file)->pMethods == nullptr ? nullptr : &kMethods;
  return code;
}

}  // namespace

WatchedFiles::WatchedFiles() {
  g_syncs = 0;
  g_full = false;
  g_real = sqlite3_vfs_find(nullptr);
  g_watched = *g_real;
  g_watched.zName = "watched";
  g_watched.pNext = nullptr;
  g_watched.szOsFile = static_cast<int>(sizeof(WatchedFile)) + g_real->szOsFile;
  g_watched.xOpen = Open;
  sqlite3_vfs_register(&g_watched, 1);
}

WatchedFiles::~WatchedFiles() {
  sqlite3_vfs_unregister(&g_watched);
  sqlite3_vfs_register(g_real, 1);
}

int WatchedFiles::Syncs() const {
  return g_syncs;
}
void WatchedFiles::ResetSyncs() {
  g_syncs = 0;
}
void WatchedFiles::SetDiskFull(bool full) {
  g_full = full;
}

}  // namespace kxrestore::engine::testing
