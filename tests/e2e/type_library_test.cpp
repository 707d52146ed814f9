// What hosts are bound to: identifiers, order of the members, dispatch ids, parameters.
#include <sstream>

#include "component/com/wide_text.h"
#include "tests/e2e/component_dll.h"

namespace kxrestore::e2e {
namespace {

GUID Guid(const wchar_t* text) {
  GUID guid{};
  CLSIDFromString(text, &guid);
  return guid;
}

const GUID kLibrary = Guid(L"{8BDD56C6-588F-44AB-909A-334B0BD36C17}");
const GUID kClass = Guid(L"{B1CBA00E-D60F-4721-B48F-2D342110EB9C}");
const GUID kInterface = Guid(L"{85A2C559-27A5-4196-9373-81836E81026B}");
const GUID kEvents = Guid(L"{BB4D256B-BCA9-41F0-A4E1-69474339D805}");
const GUID kAlias = Guid(L"{184C0BB5-3DBF-4083-91EC-559403FDAABF}");

class TypeLibraryTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(S_OK, LoadTypeLibEx(DllPath().c_str(), REGKIND_NONE, m_library.GetAddressOf()));
  }

  ComPtr<ITypeInfo> Type(REFGUID guid) {
    ComPtr<ITypeInfo> type;
    EXPECT_EQ(S_OK, m_library->GetTypeInfoOfGuid(guid, type.GetAddressOf()));
    return type;
  }

  Apartment m_apartment;
  ComPtr<ITypeLib> m_library;
};

struct Attributes {
  explicit Attributes(ITypeInfo* info) : type(info) { type->GetTypeAttr(&value); }
  ~Attributes() { type->ReleaseTypeAttr(value); }
  TYPEATTR* operator->() const { return value; }
  ITypeInfo* type;
  TYPEATTR* value = nullptr;
};

// "NAME ID SLOT HOW (PARAMETER)"; the slot is that of the table, how it is called an INVOKEKIND.
std::string Describe(ITypeInfo* type, UINT index) {
  FUNCDESC* function = nullptr;
  type->GetFuncDesc(index, &function);
  BSTR name = nullptr;
  UINT count = 0;
  type->GetNames(function->memid, &name, 1, &count);
  std::ostringstream text;
  text << component::com::FromBstr(name) << ' ' << std::hex << function->memid << ' ' << std::dec
       << function->oVft / sizeof(void*) << ' ' << function->invkind << " (";
  for (int i = 0; i < function->cParams; ++i) {
    const ELEMDESC& parameter = function->lprgelemdescParam[i];
    const USHORT flags = parameter.paramdesc.wParamFlags;
    const bool pointer = parameter.tdesc.vt == VT_PTR;
    const VARTYPE kind = pointer ? parameter.tdesc.lptdesc->vt : parameter.tdesc.vt;
    text << (flags & PARAMFLAG_FIN ? "in " : "") << (flags & PARAMFLAG_FOUT ? "out " : "")
         << (flags & PARAMFLAG_FRETVAL ? "retval " : "")
         << (kind == VT_BSTR   ? "BSTR"
             : kind == VT_BOOL ? "BOOL"
             : kind == VT_I2   ? "short"
                               : "?")
         << (pointer ? "*" : "");
  }
  SysFreeString(name);
  type->ReleaseFuncDesc(function);
  return text.str() + ")";
}

TEST_F(TypeLibraryTest, IsTheLibraryThatHostsKnow) {
  EXPECT_EQ(kLibrary, LIBID_KXRestore);
  EXPECT_EQ(kClass, CLSID_RestoreDlg);
  EXPECT_EQ(kInterface, IID__RestoreDlg);
  EXPECT_EQ(kEvents, DIID___RestoreDlg);
  EXPECT_EQ(kInterface, __uuidof(_RestoreDlg));

  TLIBATTR* attributes = nullptr;
  ASSERT_EQ(S_OK, m_library->GetLibAttr(&attributes));
  EXPECT_EQ(kLibrary, attributes->guid);
  EXPECT_EQ(1, attributes->wMajorVerNum);
  EXPECT_EQ(1, attributes->wMinorVerNum);
  EXPECT_EQ(sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32, attributes->syskind);
  m_library->ReleaseTLibAttr(attributes);

  BSTR name = nullptr;
  BSTR help = nullptr;
  ASSERT_EQ(S_OK, m_library->GetDocumentation(MEMBERID_NIL, &name, &help, nullptr, nullptr));
  EXPECT_STREQ(L"KXRestore", name);
  EXPECT_STREQ(L"Tarvane Restore Dlg", help);
  SysFreeString(name);
  SysFreeString(help);
}

TEST_F(TypeLibraryTest, TheInterfaceIsDualWithItsMembersInOrder) {
  const ComPtr<ITypeInfo> late = Type(kInterface);
  const Attributes lateAttributes(late.Get());
  EXPECT_EQ(TKIND_DISPATCH, lateAttributes->typekind);
  EXPECT_TRUE(lateAttributes->wTypeFlags & TYPEFLAG_FDUAL);

  // The early-bound half, whose functions follow those of IDispatch in the vtable.
  HREFTYPE half = 0;
  ComPtr<ITypeInfo> early;
  ASSERT_EQ(S_OK, late->GetRefTypeOfImplType(static_cast<UINT>(-1), &half));
  ASSERT_EQ(S_OK, late->GetRefTypeInfo(half, early.GetAddressOf()));
  const Attributes attributes(early.Get());
  EXPECT_EQ(TKIND_INTERFACE, attributes->typekind);
  std::vector<std::string> members;
  for (UINT i = 0; i < attributes->cFuncs; ++i) members.push_back(Describe(early.Get(), i));
  EXPECT_EQ(members, (std::vector<std::string>{
                         "DefineRestoreSet 60030009 7 1 (out retval short*)",
                         "DB 68030008 8 4 (in out BSTR*)", "RestorePath 68030007 9 4 (in out BSTR*)",
                         "SessionLogName 68030006 10 4 (in BSTR)", "DebugFlag 68030005 11 4 (in BOOL)",
                         "frmCaption 68030004 12 4 (in BSTR)", "btnCaption 68030003 13 4 (in BSTR)",
                         "lblCaption 68030002 14 4 (in BSTR)", "lblInVisible 68030001 15 4 (in BOOL)",
                         "setAction 68030000 16 4 (in BSTR)", "DBType 6803000e 17 4 (in short)",
                         "DBDatabase 6803000d 18 4 (in BSTR)", "DBServer 6803000c 19 4 (in BSTR)",
                         "DBUser 6803000b 20 4 (in BSTR)", "DBPass 6803000a 21 4 (in BSTR)"}));
}

TEST_F(TypeLibraryTest, TheEventsAndTheClass) {
  const ComPtr<ITypeInfo> events = Type(kEvents);
  const Attributes eventAttributes(events.Get());
  EXPECT_EQ(TKIND_DISPATCH, eventAttributes->typekind);
  EXPECT_FALSE(eventAttributes->wTypeFlags & TYPEFLAG_FDUAL);
  ASSERT_EQ(1, eventAttributes->cFuncs);
  EXPECT_TRUE(Describe(events.Get(), 0).starts_with("CommenceRestore 1 ")) << Describe(events.Get(), 0);

  const ComPtr<ITypeInfo> coclass = Type(kClass);
  const Attributes classAttributes(coclass.Get());
  EXPECT_EQ(TKIND_COCLASS, classAttributes->typekind);
  EXPECT_TRUE(classAttributes->wTypeFlags & TYPEFLAG_FCANCREATE);
  ASSERT_EQ(2, classAttributes->cImplTypes);
  const std::pair<GUID, int> expected[] = {{kInterface, IMPLTYPEFLAG_FDEFAULT},
                                           {kEvents, IMPLTYPEFLAG_FDEFAULT | IMPLTYPEFLAG_FSOURCE}};
  for (UINT i = 0; i < 2; ++i) {
    int flags = 0;
    HREFTYPE reference = 0;
    ComPtr<ITypeInfo> type;
    ASSERT_EQ(S_OK, coclass->GetImplTypeFlags(i, &flags));
    EXPECT_EQ(expected[i].second, flags);
    ASSERT_EQ(S_OK, coclass->GetRefTypeOfImplType(i, &reference));
    ASSERT_EQ(S_OK, coclass->GetRefTypeInfo(reference, type.GetAddressOf()));
    EXPECT_EQ(expected[i].first, Attributes(type.Get())->guid);
  }

  const ComPtr<ITypeInfo> alias = Type(kAlias);
  EXPECT_EQ(TKIND_ALIAS, Attributes(alias.Get())->typekind);
  BSTR name = nullptr;
  ASSERT_EQ(S_OK, alias->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr));
  EXPECT_STREQ(L"RestoreDlg___v0", name);
  SysFreeString(name);
}

TEST(ResourcesTest, VersionAndManifest) {
  const std::wstring path = DllPath();
  std::vector<BYTE> data(GetFileVersionInfoSizeW(path.c_str(), nullptr));
  ASSERT_FALSE(data.empty());
  ASSERT_TRUE(GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(data.size()), data.data()));
  VS_FIXEDFILEINFO* fixed = nullptr;
  UINT size = 0;
  ASSERT_TRUE(VerQueryValueW(data.data(), L"\\", reinterpret_cast<void**>(&fixed), &size));
  EXPECT_EQ(MAKELONG(1, 10), static_cast<LONG>(fixed->dwFileVersionMS));
  EXPECT_EQ(MAKELONG(0, 6), static_cast<LONG>(fixed->dwFileVersionLS));
  wchar_t* product = nullptr;
  ASSERT_TRUE(VerQueryValueW(data.data(), L"\\StringFileInfo\\040904B0\\ProductVersion",
                             reinterpret_cast<void**>(&product), &size));
  EXPECT_STREQ(L"10.1.6", product);

  const ComponentDll dll;
  EXPECT_NE(nullptr, FindResourceW(dll.Module(), MAKEINTRESOURCEW(2), MAKEINTRESOURCEW(24)));
}

}  // namespace
}  // namespace kxrestore::e2e
