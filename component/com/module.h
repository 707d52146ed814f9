// The DLL as a whole: where it is loaded from, and what keeps it loaded.
#pragma once

#include <windows.h>

#include <string>

namespace kxrestore::component::com {

// Keeps the DLL loaded during its lifetime. Every object that a client can hold contains one.
class ModuleUse {
 public:
  ModuleUse();
  ModuleUse(const ModuleUse&) : ModuleUse() {}
  ModuleUse& operator=(const ModuleUse&) { return *this; }
  ~ModuleUse();
};

// Counts the locks that clients place through the class factory. Surplus unlocks are ignored.
void LockModule(bool lock);

// Whether a client still holds an object or a lock of the DLL.
bool ModuleInUse();

void SetModuleHandle(HMODULE module);
HMODULE ModuleHandle();
std::wstring ModulePath();

}  // namespace kxrestore::component::com
