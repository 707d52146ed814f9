// The entry points of the DLL.
#include <windows.h>

#include "component/com/class_factory.h"
#include "component/com/module.h"
#include "component/com/registration.h"
#include "component/com/the_form.h"

namespace com = kxrestore::component::com;

STDAPI DllGetClassObject(REFCLSID classId, REFIID iid, void** object) {
  return com::GetClassObject(classId, iid, object);
}

STDAPI DllCanUnloadNow() {
  return com::ModuleInUse() ? S_FALSE : S_OK;
}

STDAPI DllRegisterServer() {
  return com::Register(com::Scope::kMachine);
}

STDAPI DllUnregisterServer() {
  return com::Unregister(com::Scope::kMachine);
}

STDAPI DllInstall(BOOL install, LPCWSTR commandLine) {
  return com::Install(install != FALSE, commandLine);
}

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void* processEnds) {
  if (reason == DLL_PROCESS_ATTACH) com::SetModuleHandle(module);
  if (reason == DLL_PROCESS_DETACH && !processEnds) com::DropTheForm();
  return TRUE;
}
