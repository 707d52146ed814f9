#include "component/com/module.h"

#include <atomic>

#include "base/error.h"

namespace kxrestore::component::com {
namespace {

std::atomic<long> g_uses{0};
std::atomic<long> g_locks{0};
HMODULE g_module = nullptr;

}  // namespace

ModuleUse::ModuleUse() {
  ++g_uses;
}
ModuleUse::~ModuleUse() {
  --g_uses;
}

void LockModule(bool lock) {
  if (lock) {
    ++g_locks;
    return;
  }
  long locks = g_locks;
  while (locks > 0 && !g_locks.compare_exchange_weak(locks, locks - 1)) {
  }
}

bool ModuleInUse() {
  return g_uses > 0 || g_locks > 0;
}

void SetModuleHandle(HMODULE module) {
  g_module = module;
}
HMODULE ModuleHandle() {
  return g_module;
}

std::wstring ModulePath() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(g_module, path.data(), static_cast<DWORD>(path.size()));
    if (length == 0)
      throw Error(static_cast<int>(GetLastError()), "The component does not find its own file.");
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    path.resize(path.size() * 2);
  }
}

}  // namespace kxrestore::component::com
