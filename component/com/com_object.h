// What every COM object of the DLL shares: reference count, and the boundary that no exception crosses.
#pragma once

#include <windows.h>

#include <unknwn.h>
#include <wrl/client.h>

#include <atomic>
#include <concepts>
#include <new>
#include <type_traits>
#include <utility>

#include "component/com/module.h"

namespace kxrestore::component::com {

using Microsoft::WRL::ComPtr;

// Every COM method ends here: runs the body and turns an exception into an HRESULT.
template <class Body>
requires std::is_invocable_r_v<HRESULT, Body&> HRESULT Guard(Body&& body)
noexcept {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

// The same for members whose errors must never reach the host: the failing step is skipped.
template <std::invocable Body>
HRESULT SkipErrors(Body&& body) noexcept {
  Guard([&] {
    body();
    return S_OK;
  });
  return S_OK;
}

// Base of an object with its own identity. The derived class maps interface ids to pointers in `Find`.
template <class... Interfaces>
class ComObject : public Interfaces... {
 public:
  ComObject() = default;
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;

  STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }

  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --m_references;
    if (left > 0) return left;
    // Members that the destructor releases may still add and release a reference to this object.
    m_references = 1;
    delete this;
    return 0;
  }

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    if (!object) return E_POINTER;
    *object = Find(iid);
    if (!*object) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }

 protected:
  virtual ~ComObject() = default;

  // The pointer for an interface without adding a reference; null when it is not supported.
  virtual void* Find(REFIID iid) = 0;

 private:
  std::atomic<ULONG> m_references{0};
  ModuleUse m_use;
};

template <class Object, class... Arguments>
ComPtr<Object> Make(Arguments&&... arguments) {
  return ComPtr<Object>(new Object(std::forward<Arguments>(arguments)...));
}

}  // namespace kxrestore::component::com
