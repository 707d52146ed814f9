// The class factory, the interfaces of the object, and when the DLL may go.
#include <olectl.h>

#include "tests/e2e/component_dll.h"

namespace kxrestore::e2e {
namespace {

class ServerTest : public ObjectTest {};

TEST_F(ServerTest, RefusesWhatItDoesNotHave) {
  const ComPtr<IClassFactory> factory = m_dll.Factory();
  const auto refused = [this](auto call) {
    void* object = this;
    const HRESULT result = call(&object);
    EXPECT_EQ(nullptr, object);
    return result;
  };
  EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, refused([&](void** object) {
              return m_dll.GetClassObject(IID__RestoreDlg, IID_IClassFactory, object);
            }));
  EXPECT_EQ(E_NOINTERFACE, refused([&](void** object) {
              return m_dll.GetClassObject(CLSID_RestoreDlg, IID__RestoreDlg, object);
            }));
  EXPECT_EQ(CLASS_E_NOAGGREGATION, refused([&](void** object) {
              return factory->CreateInstance(factory.Get(), IID_IUnknown, object);
            }));
  EXPECT_EQ(E_NOINTERFACE, refused([&](void** object) {
              return factory->CreateInstance(nullptr, IID_IClassFactory, object);
            }));
  EXPECT_EQ(E_NOINTERFACE,
            refused([&](void** object) { return m_object->QueryInterface(IID_IPersist, object); }));
  EXPECT_EQ(E_POINTER, m_dll.GetClassObject(CLSID_RestoreDlg, IID_IClassFactory, nullptr));
  EXPECT_EQ(E_POINTER, factory->CreateInstance(nullptr, IID_IUnknown, nullptr));
}

TEST_F(ServerTest, EveryInterfaceLeadsToTheOneIdentity) {
  ComPtr<IUnknown> identity;
  ASSERT_EQ(S_OK, m_object->QueryInterface(IID_PPV_ARGS(identity.GetAddressOf())));
  for (const IID& iid : {IID_IDispatch, IID__RestoreDlg, IID_IConnectionPointContainer, IID_IProvideClassInfo,
                         IID_IProvideClassInfo2}) {
    ComPtr<IUnknown> other;
    ComPtr<IUnknown> same;
    ASSERT_EQ(S_OK, identity->QueryInterface(iid, reinterpret_cast<void**>(other.GetAddressOf())));
    ASSERT_EQ(S_OK, other->QueryInterface(IID_PPV_ARGS(same.GetAddressOf())));
    EXPECT_EQ(identity.Get(), same.Get());
  }
}

TEST_F(ServerTest, StaysLoadedWhileSomethingIsInUse) {
  Text name(L"C:\\none.db");
  EXPECT_EQ(S_OK, m_object->put_DB(&name));  // makes the form, which keeps nothing loaded
  EXPECT_FALSE(m_dll.CanUnload());
  m_object.Reset();
  EXPECT_TRUE(m_dll.CanUnload());
  {
    const ComPtr<IClassFactory> factory = m_dll.Factory();
    EXPECT_FALSE(m_dll.CanUnload());
    factory->LockServer(TRUE);
  }
  EXPECT_FALSE(m_dll.CanUnload());
  m_dll.Factory()->LockServer(FALSE);
  EXPECT_TRUE(m_dll.CanUnload());
  // One unlock too many must not eat the next lock.
  m_dll.Factory()->LockServer(FALSE);
  m_dll.Factory()->LockServer(TRUE);
  EXPECT_FALSE(m_dll.CanUnload());
  m_dll.Factory()->LockServer(FALSE);
  EXPECT_TRUE(m_dll.CanUnload());

  ComPtr<IConnectionPoint> point;
  ComPtr<IEnumConnections> connections;
  {
    const ComPtr<_RestoreDlg> object = m_dll.NewObject();
    point = EventsOf(object.Get());
    ASSERT_EQ(S_OK, point->EnumConnections(connections.GetAddressOf()));
  }
  EXPECT_FALSE(m_dll.CanUnload());
  point.Reset();
  EXPECT_FALSE(m_dll.CanUnload());
  connections.Reset();
  EXPECT_TRUE(m_dll.CanUnload());
}

TEST_F(ServerTest, SaysWhatItsClassIs) {
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
}

}  // namespace
}  // namespace kxrestore::e2e
