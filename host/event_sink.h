// Receives the event of a RestoreDlg: an IDispatch with one dispatch identifier.
#pragma once

#include <windows.h>

#include <ocidl.h>
#include <wrl/client.h>

#include <functional>

#include "component/com/kxrestore.h"

namespace kxrestore::host {

class EventSink : public IDispatch {
 public:
  explicit EventSink(std::function<void()> commenceRestore) : m_commenceRestore(std::move(commenceRestore)) {}

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    if (!object) return E_POINTER;
    const bool known = iid == IID_IUnknown || iid == IID_IDispatch || iid == DIID___RestoreDlg;
    *object = known ? this : nullptr;
    if (!known) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&m_references)); }
  STDMETHODIMP_(ULONG) Release() override {
    const LONG left = InterlockedDecrement(&m_references);
    if (left == 0) delete this;
    return static_cast<ULONG>(left);
  }

  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID event, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    constexpr DISPID kCommenceRestore = 1;
    if (event != kCommenceRestore) return DISP_E_MEMBERNOTFOUND;
    m_commenceRestore();
    return S_OK;
  }

 protected:
  virtual ~EventSink() = default;  // called by Release

 private:
  std::function<void()> m_commenceRestore;
  LONG m_references = 0;
};

// Connects a sink to an object during its lifetime.
class Connection {
 public:
  Connection(IUnknown* source, std::function<void()> commenceRestore) {
    Microsoft::WRL::ComPtr<IConnectionPointContainer> container;
    if (FAILED(source->QueryInterface(IID_PPV_ARGS(container.GetAddressOf())))) return;
    if (FAILED(container->FindConnectionPoint(DIID___RestoreDlg, m_point.GetAddressOf()))) return;
    const Microsoft::WRL::ComPtr<IDispatch> sink(new EventSink(std::move(commenceRestore)));
    if (FAILED(m_point->Advise(sink.Get(), &m_cookie))) m_point.Reset();
  }
  ~Connection() {
    if (m_point) m_point->Unadvise(m_cookie);
  }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  explicit operator bool() const { return m_point != nullptr; }

 private:
  Microsoft::WRL::ComPtr<IConnectionPoint> m_point;
  DWORD m_cookie = 0;
};

}  // namespace kxrestore::host
