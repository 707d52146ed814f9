// Registering writes the expected keys, and unregistering removes all of them.
#include "tests/e2e/component.h"
#include "tests/e2e/program.h"

namespace kxrestore::e2e {
namespace {

const std::wstring kClasses = L"Software\\Classes\\", kClassKey = L"CLSID\\" + GuidText(CLSID_RestoreDlg),
                   kLibraryKey = L"TypeLib\\" + GuidText(LIBID_KXRestore),
                   kVersionKey = kLibraryKey + L"\\1.1",
                   kInterfaceKey = L"Interface\\" + GuidText(IID__RestoreDlg),
                   kEventsKey = L"Interface\\" + GuidText(DIID___RestoreDlg),
                   kProgId = L"KXRestore.RestoreDlg", kPlatform = sizeof(void*) == 8 ? L"win64" : L"win32";

// The text of a key below Software\Classes; "(none)" when there is no such value.
std::wstring ClassValue(HKEY root, const std::wstring& key, const wchar_t* value = nullptr) {
  wchar_t text[1024];
  DWORD size = sizeof text;
  const LSTATUS status =
      RegGetValueW(root, (kClasses + key).c_str(), value, RRF_RT_REG_SZ, nullptr, text, &size);
  return status == ERROR_SUCCESS ? text : L"(none)";
}

bool ClassKeyExists(HKEY root, const std::wstring& key) {
  HKEY opened = nullptr;
  const LSTATUS status = RegOpenKeyExW(root, (kClasses + key).c_str(), 0, KEY_READ, &opened);
  if (opened) RegCloseKey(opened);
  return status == ERROR_SUCCESS;
}

HRESULT Install(BOOL install, const wchar_t* commandLine) {
  return ComponentDll().Call<BOOL, LPCWSTR>("DllInstall", install, commandLine);
}

int Regsvr32(const std::wstring& arguments) {
  return Program(L"regsvr32 /s " + arguments + L" \"" + DllPath() + L"\"").Wait();
}

void ExpectRegistered(HKEY root, const std::wstring& path = DllPath()) {
  const struct {
    std::wstring key;
    const wchar_t* value;
    std::wstring text;
  } entries[] = {{kClassKey + L"\\InprocServer32", nullptr, path},
                 {kClassKey + L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
                 {kClassKey + L"\\ProgID", nullptr, kProgId},
                 {kClassKey + L"\\TypeLib", nullptr, GuidText(LIBID_KXRestore)},
                 {kProgId + L"\\CLSID", nullptr, GuidText(CLSID_RestoreDlg)},
                 {kVersionKey, nullptr, L"Tarvane Restore Dlg"},
                 {kVersionKey + L"\\0\\" + kPlatform, nullptr, path},
                 {kInterfaceKey, nullptr, L"_RestoreDlg"},
                 {kInterfaceKey + L"\\ProxyStubClsid32", nullptr, L"{00020424-0000-0000-C000-000000000046}"},
                 {kInterfaceKey + L"\\TypeLib", nullptr, GuidText(LIBID_KXRestore)},
                 {kInterfaceKey + L"\\TypeLib", L"Version", L"1.1"},
                 {kEventsKey, nullptr, L"__RestoreDlg"},
                 {kEventsKey + L"\\ProxyStubClsid32", nullptr, L"{00020420-0000-0000-C000-000000000046}"},
                 {kEventsKey + L"\\TypeLib", nullptr, GuidText(LIBID_KXRestore)},
                 {kEventsKey + L"\\TypeLib", L"Version", L"1.1"}};
  for (const auto& [key, value, text] : entries) EXPECT_EQ(text, ClassValue(root, key, value));
}

void ExpectNothing(HKEY root) {
  for (const std::wstring& key : {kClassKey, kLibraryKey, kInterfaceKey, kEventsKey, kProgId}) {
    EXPECT_FALSE(ClassKeyExists(root, key)) << testing::PrintToString(key);
  }
}

class RegistrationTest : public testing::Test {
 protected:
  void SetUp() override { Clear(); }
  void TearDown() override { Clear(); }
  static void Clear() {
    ComponentDll().Call("DllUnregisterServer");
    Install(FALSE, L"user");
    ExpectNothing(HKEY_LOCAL_MACHINE);
    ExpectNothing(HKEY_CURRENT_USER);
  }
  Apartment m_apartment;
};

TEST_F(RegistrationTest, Regsvr32AndInstallRegisterAndUnregister) {
  const struct {
    std::wstring arguments;  // of regsvr32
    const wchar_t* commandLine;
    HKEY root, other;
  } cases[] = {{L"", nullptr, HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER},
               {L"/n /i:user", L"USER", HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}};
  for (const auto& [arguments, commandLine, root, other] : cases) {
    ASSERT_EQ(0, Regsvr32(arguments));
    ExpectRegistered(root);
    ExpectNothing(other);
    for (int time = 0; time < 2; ++time) {  // unregistering what is not registered is no error
      EXPECT_EQ(0, Regsvr32(L"/u " + arguments));
      ExpectNothing(root);
    }
    EXPECT_EQ(S_OK, Install(TRUE, commandLine));
    ExpectRegistered(root);
    EXPECT_EQ(S_OK, Install(FALSE, commandLine));
    ExpectNothing(root);
  }
  EXPECT_EQ(E_INVALIDARG, Install(TRUE, L"users"));
  ExpectNothing(HKEY_CURRENT_USER);
}

TEST_F(RegistrationTest, RegisteringACopyReplacesThePath) {
  const auto folder = std::filesystem::temp_directory_path() / L"kx bl\u00E4nk \u6F22";
  const auto copy = folder / L"KXRestore.dll";
  std::filesystem::create_directory(folder);
  ASSERT_TRUE(std::filesystem::copy_file(DllPath(), copy));
  {
    const Registered before;
    const ComponentDll dll(copy);
    EXPECT_EQ(S_OK, dll.Call("DllRegisterServer"));
    ExpectRegistered(HKEY_LOCAL_MACHINE, copy);
    EXPECT_EQ(folder.wstring(), ClassValue(HKEY_LOCAL_MACHINE, kVersionKey + L"\\HELPDIR"));
    CLSID classId{};
    EXPECT_EQ(S_OK, CLSIDFromProgID(kProgId.c_str(), &classId));
    ComPtr<IDispatch> object;
    ASSERT_EQ(S_OK,
              CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(object.GetAddressOf())));
    VARIANT value{};
    EXPECT_EQ(S_OK, CallByName(object.Get(), L"DB", DISPATCH_PROPERTYPUT, &value));
    ComPtr<ITypeLib> library;
    EXPECT_EQ(S_OK, LoadRegTypeLib(LIBID_KXRestore, 1, 1, LOCALE_NEUTRAL, library.GetAddressOf()));
    object.Reset();
    EXPECT_EQ(S_OK, dll.Call("DllUnregisterServer"));
  }
  CoFreeUnusedLibrariesEx(0, 0);
  std::filesystem::remove_all(folder);
}

TEST_F(RegistrationTest, AFailedRegistrationLeavesNothing) {
  // A permanent key cannot be created below a volatile one.
  HKEY key = nullptr;
  ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_CURRENT_USER, (kClasses + kInterfaceKey).c_str(), 0, nullptr,
                                           REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &key, nullptr));
  RegCloseKey(key);
  EXPECT_TRUE(FAILED(Install(TRUE, L"user")));
  ExpectNothing(HKEY_CURRENT_USER);
}

TEST_F(RegistrationTest, TheOtherPlatformKeepsWhatBothShare) {
  const std::wstring other = kVersionKey + L"\\0\\" + (sizeof(void*) == 8 ? L"win32" : L"win64");
  ASSERT_EQ(S_OK, Install(TRUE, L"user"));
  ASSERT_EQ(ERROR_SUCCESS,
            RegSetKeyValueW(HKEY_CURRENT_USER, (kClasses + other).c_str(), nullptr, REG_SZ, L"x", 4));
  ASSERT_EQ(S_OK, Install(FALSE, L"user"));
  EXPECT_EQ(L"x", ClassValue(HKEY_CURRENT_USER, other));
  EXPECT_EQ(L"Tarvane Restore Dlg", ClassValue(HKEY_CURRENT_USER, kVersionKey));
  EXPECT_FALSE(ClassKeyExists(HKEY_CURRENT_USER, kVersionKey + L"\\0\\" + kPlatform));
  EXPECT_EQ(GuidText(CLSID_RestoreDlg), ClassValue(HKEY_CURRENT_USER, kProgId + L"\\CLSID"));
  RegDeleteTreeW(HKEY_CURRENT_USER, (kClasses + kLibraryKey).c_str());
}

}  // namespace
}  // namespace kxrestore::e2e
