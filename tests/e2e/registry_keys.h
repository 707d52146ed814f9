// Reading the registry, and registering the component for the time of a test.
#pragma once

#include <windows.h>

#include <map>
#include <string>

#include "tests/e2e/component_dll.h"

namespace kxrestore::e2e {

std::wstring GuidText(REFGUID guid);

// The text of a key below Software\Classes; "(none)" when there is no such value.
std::wstring ClassValue(HKEY root, const std::wstring& key, const std::wstring& value = {});
bool ClassKeyExists(HKEY root, const std::wstring& key);

// Calls an exported function of a DLL file: DllRegisterServer, DllUnregisterServer.
HRESULT CallExport(const std::wstring& dll, const char* name);
// DllInstall of the DLL under test.
HRESULT CallInstall(bool install, const wchar_t* commandLine);

// Runs `regsvr32 /s` with further arguments and the DLL under test; its exit code, -1 when it hangs.
int Regsvr32(const std::wstring& arguments);

class Registered {
 public:
  Registered();
  ~Registered();
  Registered(const Registered&) = delete;
  Registered& operator=(const Registered&) = delete;
};

}  // namespace kxrestore::e2e
