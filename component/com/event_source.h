// The connection point of an event interface. Used in one apartment.
#pragma once

#include <windows.h>

#include <ocidl.h>

#include <vector>

#include "component/com/com_object.h"

namespace kxrestore::component::com {

// Part of the object that raises the events, its `owner`: shares its lifetime and reference count.
class EventSource final : public IConnectionPoint {
 public:
  EventSource(IConnectionPointContainer& owner, REFIID events) : m_owner(owner), m_events(events) {}

  // Raises the event with this dispatch id and no parameters to every sink that is still connected when its
  // turn comes. A sink that fails, throws, or disconnects itself or another does not affect the rest.
  void Fire(DISPID event);

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override { return m_owner.AddRef(); }
  STDMETHODIMP_(ULONG) Release() override { return m_owner.Release(); }

  STDMETHODIMP GetConnectionInterface(IID* iid) override;
  STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer** container) override;
  STDMETHODIMP Advise(IUnknown* sink, DWORD* cookie) override;
  STDMETHODIMP Unadvise(DWORD cookie) override;
  STDMETHODIMP EnumConnections(IEnumConnections** connections) override;

 private:
  struct Sink {
    DWORD cookie;
    ComPtr<IDispatch> dispatch;
  };
  bool IsAdvised(DWORD cookie) const;

  IConnectionPointContainer& m_owner;
  const IID m_events;
  std::vector<Sink> m_sinks;
  DWORD m_lastCookie = 0;
};

// The container's enumerator over its connection points.
ComPtr<IEnumConnectionPoints> EnumeratePoints(std::vector<ComPtr<IConnectionPoint>> points);

}  // namespace kxrestore::component::com
