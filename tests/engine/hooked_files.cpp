#include "tests/engine/hooked_files.h"

namespace kxrestore::engine::testing {
namespace {

HookedFiles::Hook g_hook;
sqlite3_vfs* g_real = nullptr;
sqlite3_vfs g_vfs;
sqlite3_io_methods
    g_methods;  // of the file that was opened last; other files differ only in methods for locks

// A copy of each method table that the system's VFS uses, with the hooked methods in it. The array has a
// fixed size because these functions must not allocate.
struct Kind {
  const sqlite3_io_methods* real;
  sqlite3_io_methods ours;
} g_kinds[16];

// Makes the call unless the hook fails it.
template <class Function, class... Arguments>
int Call(const FileCall& call, Function function, Arguments... arguments) {
  const int code = g_hook ? g_hook(call) : SQLITE_OK;
  return code == SQLITE_OK ? function(arguments...) : code;
}

// A method whose arguments the hook does not need.
template <FileCall::Kind kKind, auto kMethod, class... Arguments>
int Plain(sqlite3_file* file, Arguments... arguments) {
  return Call({kKind, file}, g_methods.*kMethod, file, arguments...);
}
int Write(sqlite3_file* file, const void* from, int size, sqlite3_int64 at) {
  const std::string_view bytes(static_cast<const char*>(from), static_cast<std::size_t>(size));
  return Call({FileCall::kWrite, file, {}, bytes, at}, g_methods.xWrite, file, from, size, at);
}
int Truncate(sqlite3_file* file, sqlite3_int64 size) {
  return Call({FileCall::kTruncate, file, {}, {}, size}, g_methods.xTruncate, file, size);
}
int Delete(sqlite3_vfs*, const char* name, int syncFolder) {
  return Call({FileCall::kDelete, nullptr, name, {}, 0, syncFolder}, g_real->xDelete, g_real, name,
              syncFolder);
}
int Access(sqlite3_vfs*, const char* name, int flags, int* result) {
  return Call({FileCall::kAccess, nullptr, name}, g_real->xAccess, g_real, name, flags, result);
}

int Open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
  file->pMethods = nullptr;
  const int code = Call({FileCall::kOpen, file, name == nullptr ? "" : name, {}, 0, flags}, g_real->xOpen,
                        g_real, name, file, flags, outFlags);
  if (file->pMethods == nullptr) return code;
  g_methods = *file->pMethods;
  Kind* kind = g_kinds;
  while (kind->real != nullptr && kind->real != file->pMethods) ++kind;
  *kind = {file->pMethods, g_methods};
  kind->ours.xRead = Plain<FileCall::kRead, &sqlite3_io_methods::xRead>;
  kind->ours.xWrite = Write;
  kind->ours.xTruncate = Truncate;
  kind->ours.xSync = Plain<FileCall::kSync, &sqlite3_io_methods::xSync>;
  kind->ours.xFileSize = Plain<FileCall::kFileSize, &sqlite3_io_methods::xFileSize>;
  kind->ours.xLock = Plain<FileCall::kLock, &sqlite3_io_methods::xLock>;
  file->pMethods = &kind->ours;
  return code;
}

}  // namespace

HookedFiles::HookedFiles(Hook hook) {
  g_hook = std::move(hook);
  g_real = sqlite3_vfs_find(nullptr);
  g_vfs = *g_real;
  g_vfs.zName = "hooked";
  g_vfs.pNext = nullptr;
  g_vfs.xOpen = Open;
  g_vfs.xDelete = Delete;
  g_vfs.xAccess = Access;
  sqlite3_vfs_register(&g_vfs, 1);
}

HookedFiles::~HookedFiles() {
  sqlite3_vfs_unregister(&g_vfs);
  sqlite3_vfs_register(g_real, 1);
  g_hook = nullptr;
}

}  // namespace kxrestore::engine::testing
