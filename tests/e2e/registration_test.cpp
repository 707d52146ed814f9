// What registering leaves in the registry, and that unregistering takes all of it away.
#include "tests/e2e/component_dll.h"
#include "tests/e2e/registry_keys.h"

namespace kxrestore::e2e {
namespace {

const std::wstring kClassKey = L"CLSID\\" + GuidText(CLSID_RestoreDlg);
const std::wstring kLibraryKey = L"TypeLib\\" + GuidText(LIBID_KXRestore);
const std::wstring kInterfaceKey = L"Interface\\" + GuidText(IID__RestoreDlg);
const std::wstring kEventsKey = L"Interface\\" + GuidText(DIID___RestoreDlg);
const std::wstring kProgId = L"KXRestore.RestoreDlg";
const wchar_t* const kPlatform = sizeof(void*) == 8 ? L"win64" : L"win32";

void ExpectRegistered(HKEY root, const std::wstring& path) {
  EXPECT_EQ(path, ClassValue(root, kClassKey + L"\\InprocServer32"));
  EXPECT_EQ(L"Apartment", ClassValue(root, kClassKey + L"\\InprocServer32", L"ThreadingModel"));
  EXPECT_EQ(kProgId, ClassValue(root, kClassKey + L"\\ProgID"));
  EXPECT_EQ(GuidText(LIBID_KXRestore), ClassValue(root, kClassKey + L"\\TypeLib"));
  EXPECT_EQ(GuidText(CLSID_RestoreDlg), ClassValue(root, kProgId + L"\\CLSID"));

  EXPECT_EQ(L"Tarvane Restore Dlg", ClassValue(root, kLibraryKey + L"\\1.1"));
  EXPECT_EQ(path, ClassValue(root, kLibraryKey + L"\\1.1\\0\\" + kPlatform));

  EXPECT_EQ(L"_RestoreDlg", ClassValue(root, kInterfaceKey));
  EXPECT_EQ(L"{00020424-0000-0000-C000-000000000046}",
            ClassValue(root, kInterfaceKey + L"\\ProxyStubClsid32"));
  EXPECT_EQ(L"__RestoreDlg", ClassValue(root, kEventsKey));
  EXPECT_EQ(L"{00020420-0000-0000-C000-000000000046}", ClassValue(root, kEventsKey + L"\\ProxyStubClsid32"));
  for (const std::wstring& key : {kInterfaceKey, kEventsKey}) {
    EXPECT_EQ(GuidText(LIBID_KXRestore), ClassValue(root, key + L"\\TypeLib"));
    EXPECT_EQ(L"1.1", ClassValue(root, key + L"\\TypeLib", L"Version"));
  }
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
  void Clear() {
    CallExport(DllPath(), "DllUnregisterServer");
    CallInstall(false, L"user");
    ExpectNothing(HKEY_LOCAL_MACHINE);
    ExpectNothing(HKEY_CURRENT_USER);
  }
  Apartment m_apartment;
};

TEST_F(RegistrationTest, Regsvr32AndInstallRegisterAndTakeItBack) {
  const struct {
    std::wstring arguments;  // of regsvr32
    const wchar_t* commandLine;
    HKEY root, other;
  } cases[] = {{L"", nullptr, HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER},
               {L"/n /i:user", L"USER", HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}};
  for (const auto& [arguments, commandLine, root, other] : cases) {
    ASSERT_EQ(0, Regsvr32(arguments));
    ExpectRegistered(root, DllPath());
    ExpectNothing(other);
    for (int time = 0; time < 2; ++time) {  // nothing to take away is no error
      EXPECT_EQ(0, Regsvr32(L"/u " + arguments));
      ExpectNothing(root);
    }
    EXPECT_EQ(S_OK, CallInstall(true, commandLine));
    ExpectRegistered(root, DllPath());
    EXPECT_EQ(S_OK, CallInstall(false, commandLine));
    ExpectNothing(root);
  }
  EXPECT_EQ(E_INVALIDARG, CallInstall(true, L"users"));
  ExpectNothing(HKEY_CURRENT_USER);
}

TEST_F(RegistrationTest, RegisteringTwiceMovesToTheNewPlace) {
  wchar_t temporary[MAX_PATH];
  GetTempPathW(MAX_PATH, temporary);
  const std::wstring folder = std::wstring(temporary) + L"kx bl\u00E4nk \u6F22";
  const std::wstring copy = folder + L"\\KXRestore.dll";
  CreateDirectoryW(folder.c_str(), nullptr);
  ASSERT_TRUE(CopyFileW(DllPath().c_str(), copy.c_str(), FALSE));

  EXPECT_EQ(S_OK, CallExport(DllPath(), "DllRegisterServer"));
  EXPECT_EQ(S_OK, CallExport(copy, "DllRegisterServer"));
  ExpectRegistered(HKEY_LOCAL_MACHINE, copy);
  EXPECT_EQ(folder, ClassValue(HKEY_LOCAL_MACHINE, kLibraryKey + L"\\1.1\\HELPDIR"));
  {
    CLSID classId{};
    EXPECT_EQ(S_OK, CLSIDFromProgID(kProgId.c_str(), &classId));
    ComPtr<IDispatch> object;
    ASSERT_EQ(S_OK,
              CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(object.GetAddressOf())));
    Text text(L"x");
    VARIANT value = OfText(text);
    EXPECT_EQ(S_OK, CallByName(object.Get(), L"DB", DISPATCH_PROPERTYPUT, &value));
    ComPtr<ITypeLib> library;
    EXPECT_EQ(S_OK, LoadRegTypeLib(LIBID_KXRestore, 1, 1, LOCALE_NEUTRAL, library.GetAddressOf()));
  }
  EXPECT_EQ(S_OK, CallExport(copy, "DllUnregisterServer"));
  CoFreeUnusedLibrariesEx(0, 0);
  DeleteFileW(copy.c_str());
  RemoveDirectoryW(folder.c_str());
}

TEST_F(RegistrationTest, WhatFailsHalfwayIsTakenBack) {
  // Nothing lasting can be made below a key that goes with the session.
  HKEY key = nullptr;
  ASSERT_EQ(ERROR_SUCCESS,
            RegCreateKeyExW(HKEY_CURRENT_USER, (L"Software\\Classes\\" + kInterfaceKey).c_str(), 0, nullptr,
                            REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &key, nullptr));
  RegCloseKey(key);
  EXPECT_TRUE(FAILED(CallInstall(true, L"user")));
  ExpectNothing(HKEY_CURRENT_USER);
}

TEST_F(RegistrationTest, TheOtherPlatformKeepsWhatBothShare) {
  const std::wstring other = sizeof(void*) == 8 ? L"win32" : L"win64";
  const std::wstring key = L"Software\\Classes\\" + kLibraryKey + L"\\1.1\\0\\" + other;
  ASSERT_EQ(S_OK, CallInstall(true, L"user"));
  ASSERT_EQ(ERROR_SUCCESS, RegSetKeyValueW(HKEY_CURRENT_USER, key.c_str(), nullptr, REG_SZ, L"x", 4));
  ASSERT_EQ(S_OK, CallInstall(false, L"user"));
  EXPECT_EQ(L"x", ClassValue(HKEY_CURRENT_USER, kLibraryKey + L"\\1.1\\0\\" + other));
  EXPECT_EQ(L"Tarvane Restore Dlg", ClassValue(HKEY_CURRENT_USER, kLibraryKey + L"\\1.1"));
  EXPECT_FALSE(ClassKeyExists(HKEY_CURRENT_USER, kLibraryKey + L"\\1.1\\0\\" + kPlatform));
  EXPECT_EQ(GuidText(CLSID_RestoreDlg), ClassValue(HKEY_CURRENT_USER, kProgId + L"\\CLSID"));
  RegDeleteTreeW(HKEY_CURRENT_USER, (L"Software\\Classes\\" + kLibraryKey).c_str());
}

}  // namespace
}  // namespace kxrestore::e2e
