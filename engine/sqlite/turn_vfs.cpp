#include "engine/sqlite/turn_vfs.h"

#include <algorithm>
#include <array>
#include <chrono>

#include "engine/sqlite/waiter.h"

namespace kxrestore::engine::sqlite {
namespace {

// The system's own file lies behind it.
struct TurnFile {
  sqlite3_file base;
};

sqlite3_file* RealOf(sqlite3_file* file) {
  return reinterpret_cast<sqlite3_file*>(reinterpret_cast<TurnFile*>(file) + 1);
}

const sqlite3_io_methods& MethodsOf(sqlite3_file* file) {
  return *RealOf(file)->pMethods;
}

sqlite3_vfs* BaseOf(sqlite3_vfs* vfs) {
  return static_cast<sqlite3_vfs*>(vfs->pAppData);
}

bool GoOn() noexcept {
  Waiter* const waiter = Waiter::Current();
  return waiter == nullptr || waiter->GoOn();
}

template <class Work>
int DoAside(Work work) {
  Waiter* const waiter = Waiter::Current();
  if (waiter == nullptr) return work();
  int code = SQLITE_IOERR;
  waiter->DoAside([&] { code = work(); });
  return code;
}

// ---- files

int Close(sqlite3_file* file) {
  const int code = MethodsOf(file).xClose(RealOf(file));
  file->pMethods = nullptr;
  return code;
}

int Read(sqlite3_file* file, void* to, int size, sqlite3_int64 at) {
  if (!GoOn()) return SQLITE_INTERRUPT;
  return MethodsOf(file).xRead(RealOf(file), to, size, at);
}

int Write(sqlite3_file* file, const void* from, int size, sqlite3_int64 at) {
  if (Waiter* const waiter = Waiter::Current()) waiter->GiveTurn();
  return MethodsOf(file).xWrite(RealOf(file), from, size, at);
}

int Truncate(sqlite3_file* file, sqlite3_int64 size) {
  return MethodsOf(file).xTruncate(RealOf(file), size);
}

int Sync(sqlite3_file* file, int flags) {
  return DoAside([=] { return MethodsOf(file).xSync(RealOf(file), flags); });
}

int FileSize(sqlite3_file* file, sqlite3_int64* size) {
  return MethodsOf(file).xFileSize(RealOf(file), size);
}

int Lock(sqlite3_file* file, int level) {
  return MethodsOf(file).xLock(RealOf(file), level);
}

int Unlock(sqlite3_file* file, int level) {
  return MethodsOf(file).xUnlock(RealOf(file), level);
}

int CheckReservedLock(sqlite3_file* file, int* reserved) {
  return MethodsOf(file).xCheckReservedLock(RealOf(file), reserved);
}

int FileControl(sqlite3_file* file, int operation, void* argument) {
  return MethodsOf(file).xFileControl(RealOf(file), operation, argument);
}

int SectorSize(sqlite3_file* file) {
  const auto ask = MethodsOf(file).xSectorSize;
  return ask == nullptr ? 4096 : ask(RealOf(file));
}

int DeviceCharacteristics(sqlite3_file* file) {
  const auto ask = MethodsOf(file).xDeviceCharacteristics;
  return ask == nullptr ? 0 : ask(RealOf(file));
}

int ShmMap(sqlite3_file* file, int page, int size, int extend, void volatile** memory) {
  return MethodsOf(file).xShmMap(RealOf(file), page, size, extend, memory);
}

int ShmLock(sqlite3_file* file, int offset, int count, int flags) {
  return MethodsOf(file).xShmLock(RealOf(file), offset, count, flags);
}

void ShmBarrier(sqlite3_file* file) {
  MethodsOf(file).xShmBarrier(RealOf(file));
}

int ShmUnmap(sqlite3_file* file, int remove) {
  return MethodsOf(file).xShmUnmap(RealOf(file), remove);
}

int Fetch(sqlite3_file* file, sqlite3_int64 at, int size, void** memory) {
  return MethodsOf(file).xFetch(RealOf(file), at, size, memory);
}

int Unfetch(sqlite3_file* file, sqlite3_int64 at, void* memory) {
  return MethodsOf(file).xUnfetch(RealOf(file), at, memory);
}

constexpr sqlite3_io_methods MethodsOfVersion(int version) {
  return {version,
          Close,
          Read,
          Write,
          Truncate,
          Sync,
          FileSize,
          Lock,
          Unlock,
          CheckReservedLock,
          FileControl,
          SectorSize,
          DeviceCharacteristics,
          ShmMap,
          ShmLock,
          ShmBarrier,
          ShmUnmap,
          Fetch,
          Unfetch};
}

// A file must not promise more than the system's.
constexpr std::array<sqlite3_io_methods, 3> kMethods = {MethodsOfVersion(1), MethodsOfVersion(2),
                                                        MethodsOfVersion(3)};

int Open(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags, int* outFlags) {
  file->pMethods = nullptr;
  sqlite3_file* const real = RealOf(file);
  real->pMethods = nullptr;
  const int code = BaseOf(vfs)->xOpen(BaseOf(vfs), name, real, flags, outFlags);
  if (real->pMethods != nullptr) {
    file->pMethods = &kMethods[static_cast<std::size_t>(std::clamp(real->pMethods->iVersion, 1, 3)) - 1];
  }
  return code;
}

// ---- what is not about one file

int Delete(sqlite3_vfs* vfs, const char* name, int syncFolder) {
  const auto work = [=] { return BaseOf(vfs)->xDelete(BaseOf(vfs), name, syncFolder); };
  return syncFolder != 0 ? DoAside(work) : work();
}

int Sleep(sqlite3_vfs* vfs, int microseconds) {
  Waiter* const waiter = Waiter::Current();
  if (waiter == nullptr) return BaseOf(vfs)->xSleep(BaseOf(vfs), microseconds);
  waiter->Sleep(std::chrono::microseconds(microseconds));
  return microseconds;
}

int Access(sqlite3_vfs* vfs, const char* name, int flags, int* result) {
  return BaseOf(vfs)->xAccess(BaseOf(vfs), name, flags, result);
}

int FullPathname(sqlite3_vfs* vfs, const char* name, int size, char* path) {
  return BaseOf(vfs)->xFullPathname(BaseOf(vfs), name, size, path);
}

int Randomness(sqlite3_vfs* vfs, int size, char* to) {
  return BaseOf(vfs)->xRandomness(BaseOf(vfs), size, to);
}

int CurrentTime(sqlite3_vfs* vfs, double* time) {
  return BaseOf(vfs)->xCurrentTime(BaseOf(vfs), time);
}

int GetLastError(sqlite3_vfs* vfs, int size, char* text) {
  return BaseOf(vfs)->xGetLastError(BaseOf(vfs), size, text);
}

int CurrentTimeInt64(sqlite3_vfs* vfs, sqlite3_int64* time) {
  return BaseOf(vfs)->xCurrentTimeInt64(BaseOf(vfs), time);
}

constexpr const char* kName = "kxrestore";
sqlite3_vfs g_vfs;

}  // namespace

const char* RegisterTurnVfs(int& code) {
  code = sqlite3_initialize();
  sqlite3_vfs* const base = code == SQLITE_OK ? sqlite3_vfs_find(nullptr) : nullptr;
  if (base == nullptr || g_vfs.pAppData == base) return kName;
  g_vfs.iVersion = std::min(base->iVersion, 2);
  g_vfs.szOsFile = static_cast<int>(sizeof(TurnFile)) + base->szOsFile;
  g_vfs.mxPathname = base->mxPathname;
  g_vfs.zName = kName;
  g_vfs.pAppData = base;
  g_vfs.xOpen = Open;
  g_vfs.xDelete = Delete;
  g_vfs.xAccess = Access;
  g_vfs.xFullPathname = FullPathname;
  g_vfs.xRandomness = Randomness;
  g_vfs.xSleep = Sleep;
  g_vfs.xCurrentTime = CurrentTime;
  g_vfs.xGetLastError = GetLastError;
  g_vfs.xCurrentTimeInt64 = base->iVersion >= 2 ? CurrentTimeInt64 : nullptr;
  code = sqlite3_vfs_register(&g_vfs, 0);
  return kName;
}

}  // namespace kxrestore::engine::sqlite
