// Connecting to the event. That it comes is tested with the dialog.
#include <olectl.h>

#include "tests/e2e/component_dll.h"

namespace kxrestore::e2e {
namespace {

class EventsTest : public ObjectTest {
 protected:
  ComPtr<IConnectionPoint> m_point = EventsOf(m_object.Get());
};

TEST_F(EventsTest, TheContainerHasOnePoint) {
  ComPtr<IConnectionPointContainer> container;
  ASSERT_EQ(S_OK, m_point->GetConnectionPointContainer(container.GetAddressOf()));
  IID iid{};
  ASSERT_EQ(S_OK, m_point->GetConnectionInterface(&iid));
  EXPECT_EQ(DIID___RestoreDlg, iid);

  ComPtr<IConnectionPoint> none;
  EXPECT_EQ(CONNECT_E_NOCONNECTION, container->FindConnectionPoint(IID__RestoreDlg, none.GetAddressOf()));
  EXPECT_EQ(nullptr, none.Get());

  ComPtr<IEnumConnectionPoints> points;
  ComPtr<IConnectionPoint> first;
  ULONG fetched = 7;
  ASSERT_EQ(S_OK, container->EnumConnectionPoints(points.GetAddressOf()));
  EXPECT_EQ(S_OK, points->Next(1, first.GetAddressOf(), &fetched));
  EXPECT_EQ(1u, fetched);
  EXPECT_EQ(m_point.Get(), first.Get());
  EXPECT_EQ(S_FALSE, points->Next(1, none.GetAddressOf(), &fetched));
  EXPECT_EQ(0u, fetched);
}

TEST_F(EventsTest, SinksComeAndGo) {
  const ComPtr<CountingSink> one = CountingSink::Make();
  const ComPtr<CountingSink> two = CountingSink::Make();
  const DWORD first = Advise(m_object.Get(), one.Get());
  const DWORD second = Advise(m_object.Get(), two.Get());
  EXPECT_NE(0u, first);
  EXPECT_NE(first, second);

  ComPtr<IEnumConnections> connections;
  ASSERT_EQ(S_OK, m_point->EnumConnections(connections.GetAddressOf()));
  // The enumerator keeps what there was when it was made.
  EXPECT_EQ(S_OK, m_point->Unadvise(first));
  EXPECT_EQ(CONNECT_E_NOCONNECTION, m_point->Unadvise(first));

  CONNECTDATA data[3] = {};
  ULONG fetched = 0;
  EXPECT_EQ(S_FALSE, connections->Next(3, data, &fetched));
  ASSERT_EQ(2u, fetched);
  EXPECT_EQ(first, data[0].dwCookie);
  EXPECT_EQ(second, data[1].dwCookie);
  data[0].pUnk->Release();
  data[1].pUnk->Release();

  EXPECT_EQ(S_OK, connections->Reset());
  EXPECT_EQ(S_OK, connections->Skip(1));
  ComPtr<IEnumConnections> clone;
  ASSERT_EQ(S_OK, connections->Clone(clone.GetAddressOf()));
  EXPECT_EQ(S_FALSE, connections->Skip(2));
  EXPECT_EQ(S_OK, clone->Next(1, data, nullptr));
  EXPECT_EQ(second, data[0].dwCookie);
  data[0].pUnk->Release();
  EXPECT_EQ(E_POINTER, clone->Next(2, data, nullptr));

  // A cookie is not given twice.
  EXPECT_GT(Advise(m_object.Get(), one.Get()), second);
}

// Has no event interface, nor any other.
struct Mute final : IUnknown {
  STDMETHODIMP QueryInterface(REFIID, void** object) override {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
};

TEST_F(EventsTest, RefusesWhoCannotListen) {
  Mute mute;
  DWORD cookie = 7;
  EXPECT_EQ(CONNECT_E_CANNOTCONNECT, m_point->Advise(&mute, &cookie));
  EXPECT_EQ(0u, cookie);
  EXPECT_EQ(E_POINTER, m_point->Advise(nullptr, &cookie));
  EXPECT_EQ(E_POINTER, m_point->Advise(&mute, nullptr));
}

TEST_F(EventsTest, ASinkMayCallTheObjectThatLetsItGo) {
  // Held by the object alone, and looking at the object once more when it is dropped.
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

}  // namespace
}  // namespace kxrestore::e2e
