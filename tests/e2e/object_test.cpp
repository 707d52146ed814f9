// The object without its dialog: the class factory, identity, event sinks, late-bound calls as scripting
// engines make them, and when the DLL can be unloaded.
#include <olectl.h>

#include <cstring>

#include "tests/e2e/component.h"

namespace kxrestore::e2e {
namespace {

// A VARIANT of this type. All values are at the same place in its union.
template <class Value>
VARIANT Variant(VARTYPE type, Value value) {
  VARIANT made{};
  made.vt = type;
  std::memcpy(&made.llVal, &value, sizeof value);
  return made;
}
VARIANT OfText(BSTR text) {
  return Variant(VT_BSTR, text);
}
VARIANT OfNumber(LONG number) {
  return Variant(VT_I4, number);
}
VARIANT Reference(VARIANT* to) {
  return Variant(VT_BYREF | VT_VARIANT, to);
}

class ObjectTest : public ::testing::Test {
 protected:
  HRESULT Put(const wchar_t* name, VARIANT value) {
    return CallByName(m_object.Get(), name, DISPATCH_PROPERTYPUT, &value);
  }

  Apartment m_apartment;
  ComponentDll m_dll;
  ComPtr<_RestoreDlg> m_object = m_dll.NewObject();
  ComPtr<IConnectionPoint> m_point = EventsOf(m_object.Get());
};

TEST_F(ObjectTest, RefusesWhatItDoesNotHave) {
  const ComPtr<IClassFactory> factory = m_dll.Factory();
  ComPtr<IConnectionPointContainer> container;
  ASSERT_EQ(S_OK, m_point->GetConnectionPointContainer(container.GetAddressOf()));
  const std::pair<HRESULT, std::function<HRESULT(void**)>> cases[] = {
      {CLASS_E_CLASSNOTAVAILABLE,
       [&](void** out) { return m_dll.GetClassObject(IID__RestoreDlg, IID_IClassFactory, out); }},
      {E_NOINTERFACE,
       [&](void** out) { return m_dll.GetClassObject(CLSID_RestoreDlg, IID__RestoreDlg, out); }},
      {CLASS_E_NOAGGREGATION,
       [&](void** out) { return factory->CreateInstance(factory.Get(), IID_IUnknown, out); }},
      {E_NOINTERFACE, [&](void** out) { return factory->CreateInstance(nullptr, IID_IClassFactory, out); }},
      {E_NOINTERFACE, [&](void** out) { return m_object->QueryInterface(IID_IPersist, out); }},
      {CONNECT_E_NOCONNECTION, [&](void** out) {
         return container->FindConnectionPoint(IID__RestoreDlg, reinterpret_cast<IConnectionPoint**>(out));
       }}};
  for (const auto& [result, call] : cases) {
    void* object = this;
    EXPECT_EQ(result, call(&object));
    EXPECT_EQ(nullptr, object);
  }
  EXPECT_EQ(E_POINTER, m_dll.GetClassObject(CLSID_RestoreDlg, IID_IClassFactory, nullptr));
  EXPECT_EQ(E_POINTER, factory->CreateInstance(nullptr, IID_IUnknown, nullptr));
}

TEST_F(ObjectTest, EveryInterfaceLeadsToTheOneIdentity) {
  ComPtr<IUnknown> identity;
  ASSERT_EQ(S_OK, m_object->QueryInterface(IID_PPV_ARGS(identity.GetAddressOf())));
  for (const IID& iid : {IID_IDispatch, IID__RestoreDlg, IID_IConnectionPointContainer, IID_IProvideClassInfo,
                         IID_IProvideClassInfo2}) {
    ComPtr<IUnknown> other, same;
    ASSERT_EQ(S_OK, identity->QueryInterface(iid, reinterpret_cast<void**>(other.GetAddressOf())));
    ASSERT_EQ(S_OK, other->QueryInterface(IID_PPV_ARGS(same.GetAddressOf())));
    EXPECT_EQ(identity.Get(), same.Get());
  }
}

TEST_F(ObjectTest, KeepsTheDllLoadedWhileSomethingIsInUse) {
  const auto canUnloadAfterLock = [this](BOOL locked) {
    m_dll.Factory()->LockServer(locked);
    return m_dll.CanUnload();
  };
  Text name(L"C:\\none.db");
  EXPECT_EQ(S_OK, m_object->put_DB(&name));  // makes the form, which does not keep the DLL loaded
  m_point.Reset();
  EXPECT_FALSE(m_dll.CanUnload());
  m_object.Reset();
  EXPECT_TRUE(m_dll.CanUnload());
  {
    const ComPtr<IClassFactory> factory = m_dll.Factory();
    EXPECT_FALSE(m_dll.CanUnload());
  }
  EXPECT_FALSE(canUnloadAfterLock(TRUE));
  EXPECT_TRUE(canUnloadAfterLock(FALSE));
  EXPECT_TRUE(canUnloadAfterLock(FALSE));
  EXPECT_FALSE(canUnloadAfterLock(TRUE)) << "a surplus unlock does not cancel a later lock";
  EXPECT_TRUE(canUnloadAfterLock(FALSE));

  m_point = EventsOf(m_dll.NewObject().Get());
  ComPtr<IEnumConnections> connections;
  ASSERT_EQ(S_OK, m_point->EnumConnections(connections.GetAddressOf()));
  EXPECT_FALSE(m_dll.CanUnload());
  m_point.Reset();
  EXPECT_FALSE(m_dll.CanUnload());
  connections.Reset();
  EXPECT_TRUE(m_dll.CanUnload());
}

TEST_F(ObjectTest, SaysWhatItsClassAndItsEventsAre) {
  ComPtr<IProvideClassInfo2> classInfo;
  ASSERT_EQ(S_OK, m_object->QueryInterface(IID_PPV_ARGS(classInfo.GetAddressOf())));
  GUID guid{};
  EXPECT_EQ(S_OK, classInfo->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &guid));
  EXPECT_EQ(DIID___RestoreDlg, guid);
  EXPECT_EQ(E_INVALIDARG, classInfo->GetGUID(7, &guid));
  EXPECT_EQ(GUID_NULL, guid);
  ComPtr<ITypeInfo> type;
  ASSERT_EQ(S_OK, classInfo->GetClassInfo(type.GetAddressOf()));
  TYPEATTR* attributes = nullptr;
  ASSERT_EQ(S_OK, type->GetTypeAttr(&attributes));
  EXPECT_EQ(CLSID_RestoreDlg, attributes->guid);
  type->ReleaseTypeAttr(attributes);

  ASSERT_EQ(S_OK, m_point->GetConnectionInterface(&guid));
  EXPECT_EQ(DIID___RestoreDlg, guid);
  ComPtr<IConnectionPointContainer> container;
  ComPtr<IEnumConnectionPoints> points;
  ComPtr<IConnectionPoint> first, none;
  ULONG fetched = 7;
  ASSERT_EQ(S_OK, m_point->GetConnectionPointContainer(container.GetAddressOf()));
  ASSERT_EQ(S_OK, container->EnumConnectionPoints(points.GetAddressOf()));
  EXPECT_EQ(S_OK, points->Next(1, first.GetAddressOf(), &fetched));
  EXPECT_EQ(1u, fetched);
  EXPECT_EQ(m_point.Get(), first.Get());
  EXPECT_EQ(S_FALSE, points->Next(1, none.GetAddressOf(), &fetched));
  EXPECT_EQ(0u, fetched);
}

TEST_F(ObjectTest, SinksComeAndGo) {
  const ComPtr<CountingSink> one = CountingSink::Make(), two = CountingSink::Make();
  const DWORD first = Advise(m_object.Get(), one.Get()), second = Advise(m_object.Get(), two.Get());
  EXPECT_NE(0u, first);
  EXPECT_NE(first, second);
  ComPtr<IEnumConnections> connections, clone;
  ASSERT_EQ(S_OK, m_point->EnumConnections(connections.GetAddressOf()));
  // The enumerator is a snapshot of the connections at its creation.
  EXPECT_EQ(S_OK, m_point->Unadvise(first));
  EXPECT_EQ(CONNECT_E_NOCONNECTION, m_point->Unadvise(first));
  ULONG fetched = 0;
  const auto next = [&fetched](IEnumConnections* list, ULONG count, ULONG* out) {
    CONNECTDATA data[3] = {};
    const HRESULT result = list->Next(count, data, out);
    std::string cookies = result == S_OK ? "" : "end ";
    for (ULONG i = 0; i < (out ? fetched : 1) && data[i].pUnk; ++i) {
      cookies += std::to_string(data[i].dwCookie) + ' ';
      data[i].pUnk->Release();
    }
    return cookies;
  };
  const std::string remaining = std::to_string(second) + ' ';
  EXPECT_EQ("end " + std::to_string(first) + ' ' + remaining, next(connections.Get(), 3, &fetched));
  EXPECT_EQ(2u, fetched);
  EXPECT_EQ(S_OK, connections->Reset());
  EXPECT_EQ(S_OK, connections->Skip(1));
  ASSERT_EQ(S_OK, connections->Clone(clone.GetAddressOf()));
  EXPECT_EQ(S_FALSE, connections->Skip(2));
  EXPECT_EQ(remaining, next(clone.Get(), 1, nullptr));
  CONNECTDATA data[2];
  EXPECT_EQ(E_POINTER, clone->Next(2, data, nullptr));
  EXPECT_GT(Advise(m_object.Get(), one.Get()), second) << "cookies are not reused";
}

// An object without any interface, so without the event interface.
struct Mute final : IUnknown {
  STDMETHODIMP QueryInterface(REFIID, void** object) override {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
};

TEST_F(ObjectTest, RefusesSinksWithoutTheEventInterface) {
  Mute mute;
  DWORD cookie = 7;
  EXPECT_EQ(CONNECT_E_CANNOTCONNECT, m_point->Advise(&mute, &cookie));
  EXPECT_EQ(0u, cookie);
  EXPECT_EQ(E_POINTER, m_point->Advise(nullptr, &cookie));
  EXPECT_EQ(E_POINTER, m_point->Advise(&mute, nullptr));
}

TEST_F(ObjectTest, ASinkMayCallTheObjectThatReleasesIt) {
  // Belongs to a sink that only the object holds. Its destructor calls the object that releases it.
  struct Parting {
    IUnknown* object;
    ~Parting() {
      object->AddRef();
      object->Release();
    }
  };
  auto parting = std::make_shared<Parting>(Parting{m_object.Get()});
  ComPtr<CountingSink> sink = CountingSink::Make([parting] {});
  parting.reset();
  Advise(m_object.Get(), sink.Get());
  sink.Reset();
  m_point.Reset();
  m_object.Reset();
  EXPECT_TRUE(m_dll.CanUnload());
}

// The effects of the values are tested with the dialog.
TEST_F(ObjectTest, ValuesArriveHoweverTheyArePassed) {
  Text text(L"C:\\catalog.db"), one(L"1");
  const VARIANT textByReference = Variant(VT_BYREF | VT_BSTR, &text);
  VARIANT variable = OfText(text), number = OfNumber(1), truth = Variant(VT_BOOL, VARIANT_TRUE), none{};
  for (const wchar_t* name : {L"DB", L"RestorePath", L"SessionLogName", L"frmCaption", L"DBPass"}) {
    for (const VARIANT& value : {OfText(text), textByReference, Reference(&variable), OfNumber(42),
                                 Reference(&number), none, Reference(&none)}) {
      EXPECT_EQ(S_OK, Put(name, value)) << testing::PrintToString(name) << " as " << value.vt;
    }
  }
  EXPECT_EQ(VT_BSTR, variable.vt) << "the host's variable is unchanged";
  EXPECT_STREQ(L"C:\\catalog.db", variable.bstrVal);
  for (const wchar_t* name : {L"DBType", L"DebugFlag", L"lblInVisible"}) {
    for (const VARIANT& value : {OfNumber(0), Reference(&number), OfText(one), truth, Reference(&truth)}) {
      EXPECT_EQ(S_OK, Put(name, value)) << testing::PrintToString(name) << " as " << value.vt;
    }
  }
  EXPECT_EQ(DISP_E_OVERFLOW, Put(L"DBType", OfNumber(70000)));
}

TEST_F(ObjectTest, WrongCallsAreRefused) {
  VARIANT null{VT_NULL}, circle = Reference(&circle), result{};
  Text text(L"x");
  VARIANT value = OfText(text);
  EXPECT_EQ(DISP_E_TYPEMISMATCH, Put(L"frmCaption", null));
  EXPECT_EQ(DISP_E_TYPEMISMATCH, Put(L"DB", Reference(&null)));
  EXPECT_EQ(DISP_E_TYPEMISMATCH, Put(L"DB", circle));
  EXPECT_EQ(DISP_E_UNKNOWNNAME, Put(L"NoSuchProperty", value));
  // The properties are write-only.
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, CallByName(m_object.Get(), L"DB", DISPATCH_PROPERTYGET, nullptr, &result));
  EXPECT_TRUE(FAILED(CallByName(m_object.Get(), L"DefineRestoreSet", DISPATCH_METHOD, &value, &result)));
  DISPPARAMS none{};
  const auto invoke = [this](DISPID member, const IID& iid, DISPPARAMS* parameters) {
    return m_object->Invoke(member, iid, 0, DISPATCH_METHOD, parameters, nullptr, nullptr, nullptr);
  };
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, invoke(0x12345, IID_NULL, &none));
  EXPECT_EQ(DISP_E_UNKNOWNINTERFACE, invoke(0x60030009, IID_IUnknown, nullptr));
  EXPECT_EQ(E_POINTER, invoke(0x60030009, IID_NULL, nullptr));

  // Early-bound calls refuse null pointers only.
  EXPECT_EQ(E_POINTER, m_object->DefineRestoreSet(nullptr));
  EXPECT_EQ(E_POINTER, m_object->put_DB(nullptr));
  EXPECT_EQ(E_POINTER, m_object->put_RestorePath(nullptr));
  BSTR nothing = nullptr;
  EXPECT_EQ(S_OK, m_object->put_DB(&nothing));
  EXPECT_EQ(S_OK, m_object->put_frmCaption(nullptr));
  EXPECT_EQ(S_OK, m_object->put_DBType(-32768));
  EXPECT_EQ(S_OK, m_object->put_DBUser(Text(std::wstring{L'a', wchar_t(0xD800), L'\0', wchar_t(0xDC00)})));
}

TEST_F(ObjectTest, NamesAndTypeInformation) {
  LPOLESTR name = const_cast<LPOLESTR>(L"dEfInErEsToReSeT");  // names ignore case, as script languages expect
  DISPID id = 0;
  EXPECT_EQ(S_OK, m_object->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id));
  EXPECT_EQ(0x60030009, id);
  UINT count = 0;
  EXPECT_EQ(S_OK, m_object->GetTypeInfoCount(&count));
  EXPECT_EQ(1u, count);
  ComPtr<ITypeInfo> type;
  EXPECT_EQ(S_OK, m_object->GetTypeInfo(0, LOCALE_USER_DEFAULT, type.GetAddressOf()));
  ITypeInfo* none = type.Get();
  EXPECT_EQ(DISP_E_BADINDEX, m_object->GetTypeInfo(1, LOCALE_USER_DEFAULT, &none));
  EXPECT_EQ(nullptr, none);
}

}  // namespace
}  // namespace kxrestore::e2e
