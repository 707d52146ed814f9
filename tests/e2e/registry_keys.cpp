#include "tests/e2e/registry_keys.h"

#include <stdexcept>

#include "tests/e2e/program.h"

namespace kxrestore::e2e {
namespace {

const std::wstring kClasses = L"Software\\Classes\\";

}  // namespace

std::wstring GuidText(REFGUID guid) {
  wchar_t text[40];
  StringFromGUID2(guid, text, 40);
  return text;
}

std::wstring ClassValue(HKEY root, const std::wstring& key, const std::wstring& value) {
  wchar_t text[1024];
  DWORD size = sizeof text;
  const LSTATUS status = RegGetValueW(root, (kClasses + key).c_str(), value.empty() ? nullptr : value.c_str(),
                                      RRF_RT_REG_SZ, nullptr, text, &size);
  return status == ERROR_SUCCESS ? text : L"(none)";
}

bool ClassKeyExists(HKEY root, const std::wstring& key) {
  HKEY opened = nullptr;
  if (RegOpenKeyExW(root, (kClasses + key).c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS) return false;
  RegCloseKey(opened);
  return true;
}

HRESULT CallExport(const std::wstring& dll, const char* name) {
  const HMODULE module = LoadLibraryW(dll.c_str());
  if (!module) return HRESULT_FROM_WIN32(GetLastError());
  const FARPROC function = GetProcAddress(module, name);
  const HRESULT result =
      function ? reinterpret_cast<HRESULT(STDAPICALLTYPE*)()>(reinterpret_cast<void*>(function))()
               : E_NOTIMPL;
  FreeLibrary(module);
  return result;
}

HRESULT CallInstall(bool install, const wchar_t* commandLine) {
  const ComponentDll dll;
  return dll.Export<HRESULT STDAPICALLTYPE(BOOL, LPCWSTR)>("DllInstall")(install, commandLine);
}

int Regsvr32(const std::wstring& arguments) {
  return Program(L"regsvr32 /s " + arguments + L" \"" + DllPath() + L"\"").Wait();
}

Registered::Registered() {
  if (FAILED(CallExport(DllPath(), "DllRegisterServer"))) throw std::runtime_error("registering failed");
}

Registered::~Registered() {
  CallExport(DllPath(), "DllUnregisterServer");
}

}  // namespace kxrestore::e2e
