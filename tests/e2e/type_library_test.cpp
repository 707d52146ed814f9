// The binary contract with hosts: identifiers, member order, dispatch ids and parameters in the type library.
// Also the other resources of the DLL.
#include <map>
#include <sstream>

#include "component/com/wide_text.h"
#include "tests/e2e/component.h"

namespace kxrestore::e2e {
namespace {

// The name of a type or of a library.
template <class Described>
std::string NameOf(const ComPtr<Described>& described) {
  BSTR name = nullptr;
  described->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr);
  const std::string text = component::com::FromBstr(name);
  SysFreeString(name);
  return text;
}

// "  NAME ID SLOT KIND (PARAMETERS)": the dispatch id, the vtable slot (0 if late-bound) and the INVOKEKIND.
std::string DescribeFunction(const ComPtr<ITypeInfo>& type, UINT index, bool early) {
  FUNCDESC* function = nullptr;
  type->GetFuncDesc(index, &function);
  BSTR name = nullptr;
  UINT count = 0;
  type->GetNames(function->memid, &name, 1, &count);
  std::ostringstream text;
  text << "  " << component::com::FromBstr(name) << ' ' << std::hex << function->memid << ' ' << std::dec
       << (early ? static_cast<std::size_t>(function->oVft) / sizeof(void*) : 0) << ' ' << function->invkind
       << " (";
  for (int i = 0; i < function->cParams; ++i) {
    const ELEMDESC& parameter = function->lprgelemdescParam[i];
    const USHORT flags = parameter.paramdesc.wParamFlags;
    const bool pointer = parameter.tdesc.vt == VT_PTR;
    const std::map<VARTYPE, std::string> kinds = {{VT_BSTR, "BSTR"}, {VT_BOOL, "BOOL"}, {VT_I2, "short"}};
    text << (flags & PARAMFLAG_FIN ? "in " : "") << (flags & PARAMFLAG_FOUT ? "out " : "")
         << (flags & PARAMFLAG_FRETVAL ? "retval " : "")
         << kinds.at(pointer ? parameter.tdesc.lptdesc->vt : parameter.tdesc.vt) << (pointer ? "*" : "");
  }
  SysFreeString(name);
  type->ReleaseFuncDesc(function);
  return text.str() + ")\n";
}

// "KIND NAME GUID FLAGS", then a line for each function or, for a class, each implemented interface.
std::string Describe(const ComPtr<ITypeInfo>& type) {
  constexpr const char* kKinds[] = {"enum",          "record",  "module", "interface",
                                    "dispinterface", "coclass", "alias",  "union"};
  TYPEATTR* attributes = nullptr;
  type->GetTypeAttr(&attributes);
  const TYPEKIND kind = attributes->typekind;
  std::string text = std::string(kKinds[kind]) + ' ' + NameOf(type) + ' ' +
                     FromWide(GuidText(attributes->guid)) +
                     (attributes->wTypeFlags & TYPEFLAG_FDUAL ? " dual" : "") +
                     (attributes->wTypeFlags & TYPEFLAG_FCANCREATE ? " creatable" : "") + '\n';
  HREFTYPE reference = 0;
  ComPtr<ITypeInfo> other;
  for (UINT i = 0; kind == TKIND_COCLASS && i < attributes->cImplTypes; ++i) {
    int flags = 0;
    type->GetImplTypeFlags(i, &flags);
    type->GetRefTypeOfImplType(i, &reference);
    type->GetRefTypeInfo(reference, other.ReleaseAndGetAddressOf());
    text += "  " + NameOf(other) + ' ' + std::to_string(flags) + '\n';
  }
  if ((attributes->wTypeFlags & TYPEFLAG_FDUAL) && kind == TKIND_DISPATCH) {
    // The early-bound half, whose functions follow those of IDispatch in the vtable.
    type->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference);
    type->GetRefTypeInfo(reference, other.ReleaseAndGetAddressOf());
    text += Describe(other);
  } else {
    for (UINT i = 0; i < attributes->cFuncs; ++i) text += DescribeFunction(type, i, kind == TKIND_INTERFACE);
  }
  type->ReleaseTypeAttr(attributes);
  return text;
}

TEST(TypeLibrary, IsTheOneThatHostsKnow) {
  const Apartment apartment;
  ComPtr<ITypeLib> library;
  ASSERT_EQ(S_OK, LoadTypeLibEx(DllPath().c_str(), REGKIND_NONE, library.GetAddressOf()));
  TLIBATTR* attributes = nullptr;
  ASSERT_EQ(S_OK, library->GetLibAttr(&attributes));
  EXPECT_EQ(sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32, attributes->syskind);
  std::ostringstream found;
  found << NameOf(library) << ' ' << attributes->wMajorVerNum << '.' << attributes->wMinorVerNum << ' '
        << FromWide(GuidText(attributes->guid)) << '\n';
  library->ReleaseTLibAttr(attributes);
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    ComPtr<ITypeInfo> type;
    ASSERT_EQ(S_OK, library->GetTypeInfo(i, type.GetAddressOf()));
    found << Describe(type);
  }
  EXPECT_EQ(found.str(), R"(KXRestore 1.1 {8BDD56C6-588F-44AB-909A-334B0BD36C17}
dispinterface _RestoreDlg {85A2C559-27A5-4196-9373-81836E81026B} dual
interface _RestoreDlg {85A2C559-27A5-4196-9373-81836E81026B} dual
  DefineRestoreSet 60030009 7 1 (out retval short*)
  DB 68030008 8 4 (in out BSTR*)
  RestorePath 68030007 9 4 (in out BSTR*)
  SessionLogName 68030006 10 4 (in BSTR)
  DebugFlag 68030005 11 4 (in BOOL)
  frmCaption 68030004 12 4 (in BSTR)
  btnCaption 68030003 13 4 (in BSTR)
  lblCaption 68030002 14 4 (in BSTR)
  lblInVisible 68030001 15 4 (in BOOL)
  setAction 68030000 16 4 (in BSTR)
  DBType 6803000e 17 4 (in short)
  DBDatabase 6803000d 18 4 (in BSTR)
  DBServer 6803000c 19 4 (in BSTR)
  DBUser 6803000b 20 4 (in BSTR)
  DBPass 6803000a 21 4 (in BSTR)
dispinterface __RestoreDlg {BB4D256B-BCA9-41F0-A4E1-69474339D805}
  CommenceRestore 1 0 1 ()
coclass RestoreDlg {B1CBA00E-D60F-4721-B48F-2D342110EB9C} creatable
  _RestoreDlg 1
  __RestoreDlg 3
alias RestoreDlg___v0 {184C0BB5-3DBF-4083-91EC-559403FDAABF}
)");
}

TEST(Resources, VersionAndManifest) {
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
  EXPECT_NE(nullptr, FindResourceW(ComponentDll().Module(), MAKEINTRESOURCEW(2), MAKEINTRESOURCEW(24)));
}

}  // namespace
}  // namespace kxrestore::e2e
