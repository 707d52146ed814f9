// What hosts are bound to: identifiers, order of the members, dispatch ids, parameters.
#include <gtest/gtest.h>

#include "component/com/wide_text.h"
#include "tests/e2e/component_dll.h"

namespace kxrestore::e2e {
namespace {

using component::com::FromWide;

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

struct Member {
  const char* name;
  VARTYPE type;  // VT_BYREF: a reference to a BSTR, in and out
  MEMBERID id;
};

constexpr Member kPuts[] = {
    {"DB", VT_BYREF | VT_BSTR, 0x68030008},  {"RestorePath", VT_BYREF | VT_BSTR, 0x68030007},
    {"SessionLogName", VT_BSTR, 0x68030006}, {"DebugFlag", VT_BOOL, 0x68030005},
    {"frmCaption", VT_BSTR, 0x68030004},     {"btnCaption", VT_BSTR, 0x68030003},
    {"lblCaption", VT_BSTR, 0x68030002},     {"lblInVisible", VT_BOOL, 0x68030001},
    {"setAction", VT_BSTR, 0x68030000},      {"DBType", VT_I2, 0x6803000E},
    {"DBDatabase", VT_BSTR, 0x6803000D},     {"DBServer", VT_BSTR, 0x6803000C},
    {"DBUser", VT_BSTR, 0x6803000B},         {"DBPass", VT_BSTR, 0x6803000A},
};

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

struct Function {
  Function(ITypeInfo* info, UINT index) : type(info) { type->GetFuncDesc(index, &value); }
  ~Function() { type->ReleaseFuncDesc(value); }
  FUNCDESC* operator->() const { return value; }
  std::string Name() const {
    BSTR name = nullptr;
    UINT count = 0;
    type->GetNames(value->memid, &name, 1, &count);
    return component::com::FromBstr(std::exchange(name, nullptr));
  }
  ITypeInfo* type;
  FUNCDESC* value = nullptr;
};

TEST_F(TypeLibraryTest, IsTheLibraryThatHostsKnow) {
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

TEST_F(TypeLibraryTest, TheGeneratedHeaderSaysTheSame) {
  EXPECT_EQ(kLibrary, LIBID_KXRestore);
  EXPECT_EQ(kClass, CLSID_RestoreDlg);
  EXPECT_EQ(kInterface, IID__RestoreDlg);
  EXPECT_EQ(kEvents, DIID___RestoreDlg);
  EXPECT_EQ(kInterface, __uuidof(_RestoreDlg));
}

TEST_F(TypeLibraryTest, TheInterfaceIsDualWithItsMembersInOrder) {
  const ComPtr<ITypeInfo> late = Type(kInterface);
  const Attributes lateAttributes(late.Get());
  EXPECT_EQ(TKIND_DISPATCH, lateAttributes->typekind);
  EXPECT_TRUE(lateAttributes->wTypeFlags & TYPEFLAG_FDUAL);

  // The early-bound half, whose functions are the table of the object behind those of IDispatch.
  HREFTYPE half = 0;
  ComPtr<ITypeInfo> early;
  ASSERT_EQ(S_OK, late->GetRefTypeOfImplType(static_cast<UINT>(-1), &half));
  ASSERT_EQ(S_OK, late->GetRefTypeInfo(half, early.GetAddressOf()));
  const Attributes attributes(early.Get());
  EXPECT_EQ(TKIND_INTERFACE, attributes->typekind);
  ASSERT_EQ(1 + std::size(kPuts), attributes->cFuncs);

  const Function method(early.Get(), 0);
  EXPECT_EQ(static_cast<MEMBERID>(0x60030009), method->memid);
  EXPECT_EQ(INVOKE_FUNC, method->invkind);
  EXPECT_EQ(7 * sizeof(void*), static_cast<std::size_t>(method->oVft));
  EXPECT_EQ("DefineRestoreSet", Names(early.Get(), method->memid).at(0));
  ASSERT_EQ(1, method->cParams);
  const ELEMDESC& result = method->lprgelemdescParam[0];
  EXPECT_EQ(PARAMFLAG_FOUT | PARAMFLAG_FRETVAL, result.paramdesc.wParamFlags);
  ASSERT_EQ(VT_PTR, result.tdesc.vt);
  EXPECT_EQ(VT_I2, result.tdesc.lptdesc->vt);

  for (UINT i = 0; i < std::size(kPuts); ++i) {
    SCOPED_TRACE(kPuts[i].name);
    const Function put(early.Get(), i + 1);
    EXPECT_EQ(kPuts[i].id, put->memid);
    EXPECT_EQ(INVOKE_PROPERTYPUT, put->invkind);
    EXPECT_EQ((8 + i) * sizeof(void*), static_cast<std::size_t>(put->oVft));
    EXPECT_EQ(VT_HRESULT, put->elemdescFunc.tdesc.vt);
    ASSERT_EQ(1, put->cParams);
    const ELEMDESC& parameter = put->lprgelemdescParam[0];
    const bool byReference = (kPuts[i].type & VT_BYREF) != 0;
    EXPECT_EQ(byReference ? PARAMFLAG_FIN | PARAMFLAG_FOUT : PARAMFLAG_FIN, parameter.paramdesc.wParamFlags);
    ASSERT_EQ(byReference, parameter.tdesc.vt == VT_PTR);
    EXPECT_EQ(kPuts[i].type & ~VT_BYREF, byReference ? parameter.tdesc.lptdesc->vt : parameter.tdesc.vt);
    EXPECT_EQ(kPuts[i].name, Names(early.Get(), put->memid).at(0));
  }
}

TEST_F(TypeLibraryTest, TheEventsAndTheClass) {
  const ComPtr<ITypeInfo> events = Type(kEvents);
  const Attributes eventAttributes(events.Get());
  EXPECT_EQ(TKIND_DISPATCH, eventAttributes->typekind);
  EXPECT_FALSE(eventAttributes->wTypeFlags & TYPEFLAG_FDUAL);
  ASSERT_EQ(1, eventAttributes->cFuncs);
  const Function event(events.Get(), 0);
  EXPECT_EQ(1, event->memid);
  EXPECT_EQ(0, event->cParams);
  EXPECT_EQ("CommenceRestore", Names(events.Get(), 1).at(0));

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
