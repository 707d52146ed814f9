// The DLL under test, used without registration, and helpers that its tests share.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <wrl/client.h>

#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>

#include "host/event_sink.h"

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

inline std::wstring ProgramPath() {
  wchar_t program[1024];
  GetModuleFileNameW(nullptr, program, 1024);
  return program;
}
inline std::wstring BuildFolder() {
  return std::filesystem::path(ProgramPath()).parent_path().parent_path().wstring() + L'\\';
}
inline std::wstring DllPath() {
  return BuildFolder() + L"KXRestore.dll";
}
inline std::wstring HostFolder() {
  return BuildFolder() + L"host\\";
}

inline void Check(HRESULT result, const char* failure) {
  if (FAILED(result)) throw std::runtime_error(failure);
}

class ComponentDll {
 public:
  explicit ComponentDll(const std::wstring& path = DllPath()) : m_module(LoadLibraryW(path.c_str())) {
    if (!m_module) throw std::runtime_error("KXRestore.dll does not load");
  }
  ~ComponentDll() { FreeLibrary(m_module); }
  ComponentDll(const ComponentDll&) = delete;
  ComponentDll& operator=(const ComponentDll&) = delete;

  template <class... Parameters>
  HRESULT Call(const char* name, Parameters... parameters) const {
    using Function = HRESULT(STDAPICALLTYPE*)(Parameters...);
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(m_module, name)))(parameters...);
  }
  HMODULE Module() const { return m_module; }
  HRESULT GetClassObject(const CLSID& classId, const IID& iid, void** object) const {
    return Call<const CLSID&, const IID&, void**>("DllGetClassObject", classId, iid, object);
  }
  bool CanUnload() const { return Call("DllCanUnloadNow") == S_OK; }
  ComPtr<IClassFactory> Factory() const {
    ComPtr<IClassFactory> factory;
    Check(GetClassObject(CLSID_RestoreDlg, IID_PPV_ARGS(factory.GetAddressOf())), "no class factory");
    return factory;
  }
  ComPtr<_RestoreDlg> NewObject() const {
    ComPtr<_RestoreDlg> object;
    void** out = reinterpret_cast<void**>(object.GetAddressOf());
    Check(Factory()->CreateInstance(nullptr, IID__RestoreDlg, out), "no object");
    return object;
  }

 private:
  HMODULE m_module;
};

// Registers the component during its lifetime.
struct Registered {
  Registered() { Check(ComponentDll().Call("DllRegisterServer"), "registering failed"); }
  ~Registered() { ComponentDll().Call("DllUnregisterServer"); }
  Registered(const Registered&) = delete;
  Registered& operator=(const Registered&) = delete;
};

// An event sink that counts events, runs a test's code in each and returns a chosen result.
class CountingSink final : public host::EventSink {
 public:
  static ComPtr<CountingSink> Make(std::function<void()> onEvent = [] {}) {
    return new CountingSink(std::move(onEvent));
  }

  int events = 0;
  HRESULT answer = S_OK;

  STDMETHODIMP Invoke(DISPID event, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                      VARIANT* result, EXCEPINFO* exception, UINT* argument) override {
    const HRESULT handled =
        EventSink::Invoke(event, iid, locale, flags, parameters, result, exception, argument);
    return FAILED(handled) ? handled : answer;
  }

 private:
  explicit CountingSink(std::function<void()> onEvent)
      : EventSink([this, onEvent = std::move(onEvent)] {
          ++events;
          onEvent();
        }) {}
};

inline ComPtr<IConnectionPoint> EventsOf(IUnknown* object) {
  ComPtr<IConnectionPointContainer> container;
  ComPtr<IConnectionPoint> point;
  Check(object->QueryInterface(IID_PPV_ARGS(container.GetAddressOf())), "the object has no events");
  Check(container->FindConnectionPoint(DIID___RestoreDlg, point.GetAddressOf()),
        "the object does not have this event interface");
  return point;
}

inline DWORD Advise(IUnknown* object, IDispatch* sink) {
  DWORD cookie = 0;
  Check(EventsOf(object)->Advise(sink, &cookie), "the sink was refused");
  return cookie;
}

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

inline std::wstring GuidText(REFGUID guid) {
  wchar_t text[40];
  StringFromGUID2(guid, text, 40);
  return text;
}

// IDispatch::Invoke by name. `flags` is DISPATCH_METHOD, DISPATCH_PROPERTYGET or DISPATCH_PROPERTYPUT.
inline HRESULT CallByName(IDispatch* object, const wchar_t* name, WORD flags, VARIANT* argument = nullptr,
                          VARIANT* result = nullptr) {
  auto* plainName = const_cast<LPOLESTR>(name);
  DISPID member = 0, put = DISPID_PROPERTYPUT;
  const HRESULT found = object->GetIDsOfNames(IID_NULL, &plainName, 1, LOCALE_USER_DEFAULT, &member);
  if (FAILED(found)) return found;
  const bool isPut = (flags & DISPATCH_PROPERTYPUT) != 0;
  DISPPARAMS parameters{argument, isPut ? &put : nullptr, argument ? 1u : 0u, isPut ? 1u : 0u};
  return object->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, result, nullptr, nullptr);
}

}  // namespace kxrestore::e2e
