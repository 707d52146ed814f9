#include "engine/sqlite/turn_vfs.h"

#include <algorithm>
#include <array>
#include <chrono>

#include "engine/sqlite/waiter.h"

namespace kxrestore::engine::sqlite {
namespace {

// The system's own file follows it in memory.
struct TurnFile {
  sqlite3_file base;
};

sqlite3_file* SystemOf(sqlite3_file* file) {
  return reinterpret_cast<sqlite3_file*>(reinterpret_cast<TurnFile*>(file) + 1);
}

const sqlite3_io_methods* MethodsOf(sqlite3_file* file) {
  return SystemOf(file)->pMethods;
}

sqlite3_vfs* SystemOf(sqlite3_vfs* vfs) {
  return static_cast<sqlite3_vfs*>(vfs->pAppData);
}

const sqlite3_vfs* MethodsOf(sqlite3_vfs* vfs) {
  return SystemOf(vfs);
}

// Forward<&sqlite3_io_methods::xRead>::Call passes the call on to the system's file or VFS.
template <auto kMethod>
struct Forward;

template <class Methods, class Object, class Result, class... Arguments,
          Result (*Methods::*kMethod)(Object*, Arguments...)>
struct Forward<kMethod> {
  static Result Call(Object* object, Arguments... arguments) {
    return (MethodsOf(object)->*kMethod)(SystemOf(object), arguments...);
  }
};

template <auto kMethod>
constexpr auto kForward = Forward<kMethod>::Call;

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

int Read(sqlite3_file* file, void* to, int size, sqlite3_int64 at) {
  if (!GoOn()) return SQLITE_INTERRUPT;
  return kForward<&sqlite3_io_methods::xRead>(file, to, size, at);
}

int Write(sqlite3_file* file, const void* from, int size, sqlite3_int64 at) {
  if (Waiter* const waiter = Waiter::Current()) waiter->GiveTurn();
  return kForward<&sqlite3_io_methods::xWrite>(file, from, size, at);
}

int Sync(sqlite3_file* file, int flags) {
  return DoAside([=] { return kForward<&sqlite3_io_methods::xSync>(file, flags); });
}

constexpr sqlite3_io_methods MethodsOfVersion(int version) {
  using Methods = sqlite3_io_methods;
  return {.iVersion = version,
          .xClose = kForward<&Methods::xClose>,
          .xRead = Read,
          .xWrite = Write,
          .xTruncate = kForward<&Methods::xTruncate>,
          .xSync = Sync,
          .xFileSize = kForward<&Methods::xFileSize>,
          .xLock = kForward<&Methods::xLock>,
          .xUnlock = kForward<&Methods::xUnlock>,
          .xCheckReservedLock = kForward<&Methods::xCheckReservedLock>,
          .xFileControl = kForward<&Methods::xFileControl>,
          .xSectorSize = kForward<&Methods::xSectorSize>,
          .xDeviceCharacteristics = kForward<&Methods::xDeviceCharacteristics>,
          .xShmMap = kForward<&Methods::xShmMap>,
          .xShmLock = kForward<&Methods::xShmLock>,
          .xShmBarrier = kForward<&Methods::xShmBarrier>,
          .xShmUnmap = kForward<&Methods::xShmUnmap>,
          .xFetch = kForward<&Methods::xFetch>,
          .xUnfetch = kForward<&Methods::xUnfetch>};
}

// A file must not claim a newer interface than the system's.
constexpr std::array<sqlite3_io_methods, 3> kMethods = {MethodsOfVersion(1), MethodsOfVersion(2),
                                                        MethodsOfVersion(3)};

int Open(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags, int* outFlags) {
  file->pMethods = nullptr;
  sqlite3_file* const real = SystemOf(file);
  real->pMethods = nullptr;
  const int code = SystemOf(vfs)->xOpen(SystemOf(vfs), name, real, flags, outFlags);
  if (real->pMethods != nullptr) {
    file->pMethods = &kMethods[static_cast<std::size_t>(std::clamp(real->pMethods->iVersion, 1, 3)) - 1];
  }
  return code;
}

// ---- the file system

int Delete(sqlite3_vfs* vfs, const char* name, int syncFolder) {
  const auto work = [=] { return kForward<&sqlite3_vfs::xDelete>(vfs, name, syncFolder); };
  return syncFolder != 0 ? DoAside(work) : work();
}

int Sleep(sqlite3_vfs* vfs, int microseconds) {
  Waiter* const waiter = Waiter::Current();
  if (waiter == nullptr) return kForward<&sqlite3_vfs::xSleep>(vfs, microseconds);
  waiter->Sleep(std::chrono::microseconds(microseconds));
  return microseconds;
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
  g_vfs.xAccess = kForward<&sqlite3_vfs::xAccess>;
  g_vfs.xFullPathname = kForward<&sqlite3_vfs::xFullPathname>;
  g_vfs.xRandomness = kForward<&sqlite3_vfs::xRandomness>;
  g_vfs.xSleep = Sleep;
  g_vfs.xCurrentTime = kForward<&sqlite3_vfs::xCurrentTime>;
  g_vfs.xGetLastError = kForward<&sqlite3_vfs::xGetLastError>;
  g_vfs.xCurrentTimeInt64 = base->iVersion >= 2 ? kForward<&sqlite3_vfs::xCurrentTimeInt64> : nullptr;
  code = sqlite3_vfs_register(&g_vfs, 0);
  return kName;
}

}  // namespace kxrestore::engine::sqlite
