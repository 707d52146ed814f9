#include "component/com/event_source.h"

#include <olectl.h>

#include <algorithm>

#include "component/com/host_call.h"

namespace kxrestore::component::com {
namespace {

IConnectionPoint* HandOut(const ComPtr<IConnectionPoint>& point) {
  return ComPtr<IConnectionPoint>(point).Detach();
}

struct Connection {
  DWORD cookie;
  ComPtr<IUnknown> sink;
};

CONNECTDATA HandOut(const Connection& connection) {
  return {ComPtr<IUnknown>(connection.sink).Detach(), connection.cookie};
}

// One enumerator class for both lists. It works on a copy, so that the list may change meanwhile.
template <class Interface, class Element>
class Enumerator final : public ComObject<Interface> {
 public:
  using Item = decltype(HandOut(std::declval<const Element&>()));

  Enumerator(std::vector<Element> elements, std::size_t next)
      : m_elements(std::move(elements)), m_next(next) {}

  STDMETHODIMP Next(ULONG count, Item* items, ULONG* fetched) override {
    if (fetched) *fetched = 0;
    if (!items || (count != 1 && !fetched)) return E_POINTER;
    ULONG given = 0;
    while (given < count && m_next < m_elements.size()) items[given++] = HandOut(m_elements[m_next++]);
    if (fetched) *fetched = given;
    return given == count ? S_OK : S_FALSE;
  }

  STDMETHODIMP Skip(ULONG count) override {
    const std::size_t left = m_elements.size() - m_next;
    m_next += std::min<std::size_t>(count, left);
    return count <= left ? S_OK : S_FALSE;
  }

  STDMETHODIMP Reset() override {
    m_next = 0;
    return S_OK;
  }

  STDMETHODIMP Clone(Interface** clone) override {
    if (!clone) return E_POINTER;
    *clone = nullptr;
    return Guard([&] {
      *clone = Make<Enumerator>(m_elements, m_next).Detach();
      return S_OK;
    });
  }

 private:
  void* Find(REFIID iid) override {
    return iid == IID_IUnknown || iid == __uuidof(Interface) ? static_cast<Interface*>(this) : nullptr;
  }

  std::vector<Element> m_elements;
  std::size_t m_next;
};

}  // namespace

void EventSource::Fire(DISPID event) {
  const std::vector<Sink> sinks = m_sinks;
  for (const Sink& sink : sinks) {
    if (!IsAdvised(sink.cookie)) continue;
    CallHost([&] {
      DISPPARAMS none{};
      sink.dispatch->Invoke(event, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none, nullptr, nullptr,
                            nullptr);
    });
  }
}

bool EventSource::IsAdvised(DWORD cookie) const {
  return std::any_of(m_sinks.begin(), m_sinks.end(), [=](const Sink& sink) { return sink.cookie == cookie; });
}

STDMETHODIMP EventSource::QueryInterface(REFIID iid, void** object) {
  if (!object) return E_POINTER;
  *object = iid == IID_IUnknown || iid == IID_IConnectionPoint ? this : nullptr;
  if (!*object) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

STDMETHODIMP EventSource::GetConnectionInterface(IID* iid) {
  if (!iid) return E_POINTER;
  *iid = m_events;
  return S_OK;
}

STDMETHODIMP EventSource::GetConnectionPointContainer(IConnectionPointContainer** container) {
  if (!container) return E_POINTER;
  *container = ComPtr<IConnectionPointContainer>(&m_owner).Detach();
  return S_OK;
}

STDMETHODIMP EventSource::Advise(IUnknown* sink, DWORD* cookie) {
  if (!cookie) return E_POINTER;
  *cookie = 0;
  if (!sink) return E_POINTER;
  return Guard([&] {
    // A sink written by hand may know the event interface by its id, or be a plain IDispatch.
    ComPtr<IDispatch> dispatch;
    if (FAILED(sink->QueryInterface(m_events, reinterpret_cast<void**>(dispatch.GetAddressOf()))) &&
        FAILED(sink->QueryInterface(IID_IDispatch,
                                    reinterpret_cast<void**>(dispatch.ReleaseAndGetAddressOf())))) {
      return CONNECT_E_CANNOTCONNECT;
    }
    m_sinks.push_back({m_lastCookie + 1, dispatch});
    *cookie = ++m_lastCookie;
    return S_OK;
  });
}

STDMETHODIMP EventSource::Unadvise(DWORD cookie) {
  const auto sink =
      std::find_if(m_sinks.begin(), m_sinks.end(), [=](const Sink& entry) { return entry.cookie == cookie; });
  if (sink == m_sinks.end()) return CONNECT_E_NOCONNECTION;
  // Releasing a sink may call back into this list, so update the list first.
  const ComPtr<IDispatch> last = std::move(sink->dispatch);
  m_sinks.erase(sink);
  return S_OK;
}

STDMETHODIMP EventSource::EnumConnections(IEnumConnections** connections) {
  if (!connections) return E_POINTER;
  *connections = nullptr;
  return Guard([&] {
    std::vector<Connection> list;
    for (const Sink& sink : m_sinks) list.push_back({sink.cookie, sink.dispatch});
    *connections = Make<Enumerator<IEnumConnections, Connection>>(std::move(list), 0).Detach();
    return S_OK;
  });
}

ComPtr<IEnumConnectionPoints> EnumeratePoints(std::vector<ComPtr<IConnectionPoint>> points) {
  return Make<Enumerator<IEnumConnectionPoints, ComPtr<IConnectionPoint>>>(std::move(points), 0);
}

}  // namespace kxrestore::component::com
