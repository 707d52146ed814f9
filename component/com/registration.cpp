#include "component/com/registration.h"

#include <memory>
#include <string>
#include <vector>

#include "base/error.h"
#include "component/com/com_object.h"
#include "component/com/kxrestore.h"
#include "component/com/type_library.h"

namespace kxrestore::component::com {
namespace {

// The system's marshallers of dual interfaces and of dispinterfaces.
constexpr wchar_t kDualMarshaller[] = L"{00020424-0000-0000-C000-000000000046}";
constexpr wchar_t kDispatchMarshaller[] = L"{00020420-0000-0000-C000-000000000046}";

// Per-machine and per-user entries have the same shape. HKEY_CLASSES_ROOT would merge the two.
HKEY RootOf(Scope scope) {
  return scope == Scope::kUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
}
const std::wstring kClasses = L"Software\\Classes\\";

// A type library lists the platforms that it supports; both may be registered side by side.
constexpr const wchar_t* kPlatform = sizeof(void*) == 8 ? L"win64" : L"win32";

struct CloseKey {
  void operator()(HKEY key) const { RegCloseKey(key); }
};
using Key = std::unique_ptr<std::remove_pointer_t<HKEY>, CloseKey>;

std::wstring GuidText(REFGUID guid) {
  wchar_t text[40];
  StringFromGUID2(guid, text, 40);
  return text;
}

struct Names {
  std::wstring classKey = L"CLSID\\" + GuidText(CLSID_RestoreDlg);
  std::wstring programId = L"KXRestore.RestoreDlg";
  std::wstring interfaceKey = L"Interface\\" + GuidText(IID__RestoreDlg);
  std::wstring eventsKey = L"Interface\\" + GuidText(DIID___RestoreDlg);
  std::wstring library = GuidText(LIBID_KXRestore);
  std::wstring libraryKey = L"TypeLib\\" + library;
  std::wstring version = L"1.1";
  std::wstring versionKey = libraryKey + L"\\" + version;
};

struct Entry {
  std::wstring key;
  std::wstring value;  // empty: the key's default value
  std::wstring data;
};

std::vector<Entry> Entries() {
  const Names names;
  const std::wstring path = ModulePath();
  const std::wstring folder = path.substr(0, path.find_last_of(L"\\/"));
  std::vector<Entry> entries = {
      {names.classKey, L"", names.programId},
      {names.classKey + L"\\InprocServer32", L"", path},
      {names.classKey + L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
      {names.classKey + L"\\ProgID", L"", names.programId},
      {names.classKey + L"\\Programmable", L"", L""},
      {names.classKey + L"\\TypeLib", L"", names.library},
      {names.classKey + L"\\Version", L"", names.version},
      {names.programId, L"", names.programId},
      {names.programId + L"\\CLSID", L"", GuidText(CLSID_RestoreDlg)},
      {names.versionKey, L"", L"Tarvane Restore Dlg"},
      {names.versionKey + L"\\0\\" + kPlatform, L"", path},
      {names.versionKey + L"\\FLAGS", L"", L"0"},
      {names.versionKey + L"\\HELPDIR", L"", folder},
  };
  const auto addInterface = [&](const std::wstring& key, const wchar_t* name, const wchar_t* marshaller) {
    entries.push_back({key, L"", name});
    entries.push_back({key + L"\\ProxyStubClsid32", L"", marshaller});
    entries.push_back({key + L"\\TypeLib", L"", names.library});
    entries.push_back({key + L"\\TypeLib", L"Version", names.version});
  };
  addInterface(names.interfaceKey, L"_RestoreDlg", kDualMarshaller);
  addInterface(names.eventsKey, L"__RestoreDlg", kDispatchMarshaller);
  return entries;
}

LSTATUS Write(Scope scope, const Entry& entry) {
  HKEY key = nullptr;
  LSTATUS status = RegCreateKeyExW(RootOf(scope), (kClasses + entry.key).c_str(), 0, nullptr,
                                   REG_OPTION_NON_VOLATILE, KEY_WRITE, nullptr, &key, nullptr);
  if (status != ERROR_SUCCESS) return status;
  const Key closing(key);
  return RegSetValueExW(key, entry.value.empty() ? nullptr : entry.value.c_str(), 0, REG_SZ,
                        reinterpret_cast<const BYTE*>(entry.data.c_str()),
                        static_cast<DWORD>((entry.data.size() + 1) * sizeof(wchar_t)));
}

// Number of subkeys; 0 for a missing key.
DWORD KeysBelow(Scope scope, const std::wstring& name) {
  HKEY key = nullptr;
  if (RegOpenKeyExW(RootOf(scope), (kClasses + name).c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return 0;
  const Key closing(key);
  DWORD keys = 0;
  RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, nullptr, nullptr, nullptr,
                   nullptr, nullptr);
  return keys;
}

HRESULT RemoveAll(Scope scope) {
  const Names names;
  LSTATUS first = ERROR_SUCCESS;
  const auto remove = [&](const std::wstring& key) {
    const LSTATUS status = RegDeleteTreeW(RootOf(scope), (kClasses + key).c_str());
    if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND && first == ERROR_SUCCESS) first = status;
  };
  // Each platform has class and interface keys of its own. The type library's keys and the ProgID are shared:
  // they are removed with the last platform and the last version.
  remove(names.classKey);
  remove(names.versionKey + L"\\0\\" + kPlatform);
  if (KeysBelow(scope, names.versionKey + L"\\0") == 0) remove(names.versionKey);
  if (KeysBelow(scope, names.libraryKey) == 0) {
    remove(names.libraryKey);
    remove(names.programId);
  }
  remove(names.interfaceKey);
  remove(names.eventsKey);
  return HRESULT_FROM_WIN32(first);
}

}  // namespace

HRESULT Register(Scope scope) {
  return Guard([&]() -> HRESULT {
    LSTATUS status = ERROR_SUCCESS;
    for (const Entry& entry : Entries()) {
      status = Write(scope, entry);
      if (status != ERROR_SUCCESS) break;
    }
    if (status != ERROR_SUCCESS) RemoveAll(scope);
    return HRESULT_FROM_WIN32(status);
  });
}

HRESULT Unregister(Scope scope) {
  return Guard([&] { return RemoveAll(scope); });
}

HRESULT Install(bool install, const wchar_t* commandLine) {
  Scope scope = Scope::kMachine;
  if (commandLine && *commandLine) {
    if (_wcsicmp(commandLine, L"user") != 0) return E_INVALIDARG;
    scope = Scope::kUser;
  }
  return install ? Register(scope) : Unregister(scope);
}

}  // namespace kxrestore::component::com
