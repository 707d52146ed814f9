#include "tests/engine/watched_files.h"

#include <sqlite3.h>

#include <map>
#include <thread>

namespace kxrestore::engine::testing {
namespace {

sqlite3_vfs* g_real = nullptr;
sqlite3_vfs g_watched;
sqlite3_io_methods g_last;                                          // of the system's, those that are watched
std::map<const sqlite3_io_methods*, sqlite3_io_methods> g_methods;  // with ours in them, by the system's
int g_syncs = 0;
bool g_full = false;
std::chrono::milliseconds g_pageDelay{}, g_syncDelay{};

int Read(sqlite3_file* file, void* to, int size, sqlite3_int64 at) {
  std::this_thread::sleep_for(g_pageDelay);
  return g_last.xRead(file, to, size, at);
}

int Write(sqlite3_file* file, const void* from, int size, sqlite3_int64 at) {
  std::this_thread::sleep_for(g_pageDelay);
  return g_full ? SQLITE_FULL : g_last.xWrite(file, from, size, at);
}

int Sync(sqlite3_file* file, int flags) {
  ++g_syncs;
  std::this_thread::sleep_for(g_syncDelay);
  return g_last.xSync(file, flags);
}

// The kinds of files differ in their locks only.
int Open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
  const int code = g_real->xOpen(g_real, name, file, flags, outFlags);
  if (file->pMethods == nullptr) return code;
  g_last = *file->pMethods;
  sqlite3_io_methods& ours = g_methods[file->pMethods] = g_last;
  ours.xRead = Read;
  ours.xWrite = Write;
  ours.xSync = Sync;
  file->pMethods = &ours;
  return code;
}

}  // namespace

WatchedFiles::WatchedFiles() {
  g_syncs = 0;
  g_full = false;
  g_pageDelay = g_syncDelay = {};
  g_real = sqlite3_vfs_find(nullptr);
  g_watched = *g_real;
  g_watched.zName = "watched";
  g_watched.pNext = nullptr;
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

void WatchedFiles::SetDelays(std::chrono::milliseconds page, std::chrono::milliseconds sync) {
  g_pageDelay = page;
  g_syncDelay = sync;
}

}  // namespace kxrestore::engine::testing
