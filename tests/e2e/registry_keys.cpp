#include "tests/e2e/registry_keys.h"

#include <stdexcept>
#include <thread>
#include <vector>

namespace kxrestore::e2e {
namespace {

const std::wstring kClasses = L"Software\\Classes\\";

struct Handle {
  ~Handle() {
    if (value) CloseHandle(value);
  }
  HANDLE value = nullptr;
};

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
  return RunProgram(L"regsvr32 /s " + arguments + L" \"" + DllPath() + L"\"");
}

int RunProgram(const std::wstring& commandLine, std::string* output, DWORD limit) {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  Handle readEnd;
  Handle writeEnd;
  if (!CreatePipe(&readEnd.value, &writeEnd.value, &inherited, 0)) return -1;
  SetHandleInformation(readEnd.value, HANDLE_FLAG_INHERIT, 0);

  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdOutput = start.hStdError = writeEnd.value;
  PROCESS_INFORMATION process{};
  std::vector<wchar_t> line(commandLine.begin(), commandLine.end());
  line.push_back(L'\0');
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr, nullptr,
                      &start, &process)) {
    return -1;
  }
  const Handle running{process.hProcess};
  const Handle mainThread{process.hThread};
  CloseHandle(writeEnd.value);
  writeEnd.value = nullptr;

  std::string text;
  std::thread reader([&] {
    char piece[4096];
    DWORD size = 0;
    while (ReadFile(readEnd.value, piece, sizeof piece, &size, nullptr) && size > 0) text.append(piece, size);
  });
  DWORD code = static_cast<DWORD>(-1);
  if (WaitForSingleObject(process.hProcess, limit) == WAIT_OBJECT_0) {
    GetExitCodeProcess(process.hProcess, &code);
  } else {
    TerminateProcess(process.hProcess, 1);
  }
  reader.join();
  if (output) *output = text;
  return static_cast<int>(code);
}

Registered::Registered() {
  if (FAILED(CallExport(DllPath(), "DllRegisterServer"))) throw std::runtime_error("registering failed");
}

Registered::~Registered() {
  CallExport(DllPath(), "DllUnregisterServer");
}

}  // namespace kxrestore::e2e
