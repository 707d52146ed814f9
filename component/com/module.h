// The DLL as a whole: where it is loaded from, and what keeps it loaded.
#pragma once

#include <windows.h>

#include <string>

namespace kxrestore::component::com {

// Keeps the DLL loaded for as long as it lives. Every object that a client can hold has one.
class ModuleUse {
 public:
  ModuleUse();
  ModuleUse(const ModuleUse&) : ModuleUse() {}
  ModuleUse& operator=(const ModuleUse&) { return *this; }
  ~ModuleUse();
};

// The locks that clients place through the class factory. Taking away more than was placed changes nothing.
void LockModule(bool lock);

// Whether anything of the DLL is still in a client's hands.
bool ModuleInUse();

void SetModuleHandle(HMODULE module);
HMODULE ModuleHandle();
std::wstring ModulePath();

}  // namespace kxrestore::component::com
