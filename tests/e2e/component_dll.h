// The DLL under test and what every test of it needs. It is used without being registered.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <ocidl.h>
#include <wrl/client.h>

#include <functional>
#include <string>

#include "component/com/kxrestore.h"

namespace kxrestore::e2e {

using Microsoft::WRL::ComPtr;

// An apartment for the calling thread.
class Apartment {
 public:
  explicit Apartment(DWORD kind = COINIT_APARTMENTTHREADED) { CoInitializeEx(nullptr, kind); }
  ~Apartment() { CoUninitialize(); }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;
};

// ../KXRestore.dll and ../host from the folder of the test program.
std::wstring DllPath();
std::wstring HostFolder();  // with its backslash

class ComponentDll {
 public:
  explicit ComponentDll(const std::wstring& path = DllPath());
  ~ComponentDll();
  ComponentDll(const ComponentDll&) = delete;
  ComponentDll& operator=(const ComponentDll&) = delete;

  template <class Function>
  Function* Export(const char* name) const {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(m_module, name)));
  }
  HMODULE Module() const { return m_module; }
  HRESULT GetClassObject(REFCLSID classId, REFIID iid, void** object) const;
  bool CanUnload() const;
  ComPtr<IClassFactory> Factory() const;
  ComPtr<_RestoreDlg> NewObject() const;

 private:
  HMODULE m_module;
};

// An event sink that counts events and runs the test's code in them.
class CountingSink final : public IDispatch {
 public:
  static ComPtr<CountingSink> Make(std::function<void()> onEvent = {});

  int events = 0;
  HRESULT answer = S_OK;

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&m_references)); }
  STDMETHODIMP_(ULONG) Release() override;
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override;

 private:
  std::function<void()> m_onEvent;
  LONG m_references = 0;
};

ComPtr<IConnectionPoint> EventsOf(IUnknown* object);
DWORD Advise(IUnknown* object, IDispatch* sink);

// A BSTR that is freed.
class Text {
 public:
  explicit Text(const std::wstring& text)
      : m_text(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {}
  ~Text() { SysFreeString(m_text); }
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;
  operator BSTR() const { return m_text; }
  BSTR* operator&() { return &m_text; }

 private:
  BSTR m_text;
};

// Arguments of late-bound calls.
inline VARIANT OfText(BSTR text) {
  VARIANT value{};
  value.vt = VT_BSTR;
  value.bstrVal = text;
  return value;
}
inline VARIANT OfNumber(LONG number) {
  VARIANT value{};
  value.vt = VT_I4;
  value.lVal = number;
  return value;
}
inline VARIANT Reference(VARIANT* to) {
  VARIANT value{};
  value.vt = VT_BYREF | VT_VARIANT;
  value.pvarVal = to;
  return value;
}

// IDispatch::Invoke by name. `flags` is DISPATCH_METHOD or DISPATCH_PROPERTYPUT.
HRESULT CallByName(IDispatch* object, const wchar_t* name, WORD flags, VARIANT* argument = nullptr,
                   VARIANT* result = nullptr);

// An object of its own, without a dialog.
class ObjectTest : public ::testing::Test {
 protected:
  Apartment m_apartment;
  ComponentDll m_dll;
  ComPtr<_RestoreDlg> m_object = m_dll.NewObject();
};

}  // namespace kxrestore::e2e
