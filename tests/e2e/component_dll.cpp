#include "tests/e2e/component_dll.h"

#include <stdexcept>

namespace kxrestore::e2e {

namespace {

std::wstring BuildFolder() {
  wchar_t program[1024];
  GetModuleFileNameW(nullptr, program, 1024);
  std::wstring path = program;
  path.resize(path.find_last_of(L'\\'));
  return path.substr(0, path.find_last_of(L'\\') + 1);
}

}  // namespace

std::wstring DllPath() {
  return BuildFolder() + L"KXRestore.dll";
}

std::wstring HostFolder() {
  return BuildFolder() + L"host\\";
}

ComponentDll::ComponentDll(const std::wstring& path) : m_module(LoadLibraryW(path.c_str())) {
  if (!m_module) throw std::runtime_error("KXRestore.dll does not load");
}

ComponentDll::~ComponentDll() {
  FreeLibrary(m_module);
}

HRESULT ComponentDll::GetClassObject(REFCLSID classId, REFIID iid, void** object) const {
  return Export<HRESULT STDAPICALLTYPE(REFCLSID, REFIID, void**)>("DllGetClassObject")(classId, iid, object);
}

bool ComponentDll::CanUnload() const {
  return Export<HRESULT STDAPICALLTYPE()>("DllCanUnloadNow")() == S_OK;
}

ComPtr<IClassFactory> ComponentDll::Factory() const {
  ComPtr<IClassFactory> factory;
  const HRESULT result = GetClassObject(CLSID_RestoreDlg, IID_PPV_ARGS(factory.GetAddressOf()));
  if (FAILED(result)) throw std::runtime_error("no class factory");
  return factory;
}

ComPtr<_RestoreDlg> ComponentDll::NewObject() const {
  ComPtr<_RestoreDlg> object;
  void** out = reinterpret_cast<void**>(object.GetAddressOf());
  if (FAILED(Factory()->CreateInstance(nullptr, IID__RestoreDlg, out))) throw std::runtime_error("no object");
  return object;
}

ComPtr<CountingSink> CountingSink::Make(std::function<void()> onEvent) {
  ComPtr<CountingSink> sink(new CountingSink);
  sink->m_onEvent = std::move(onEvent);
  return sink;
}

STDMETHODIMP CountingSink::QueryInterface(REFIID iid, void** object) {
  *object = iid == IID_IUnknown || iid == IID_IDispatch || iid == DIID___RestoreDlg ? this : nullptr;
  if (!*object) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

STDMETHODIMP_(ULONG) CountingSink::Release() {
  const LONG left = InterlockedDecrement(&m_references);
  if (left == 0) delete this;
  return static_cast<ULONG>(left);
}

STDMETHODIMP CountingSink::Invoke(DISPID event, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                  UINT*) {
  if (event != 1) return DISP_E_MEMBERNOTFOUND;
  ++events;
  if (m_onEvent) m_onEvent();
  return answer;
}

ComPtr<IConnectionPoint> EventsOf(IUnknown* object) {
  ComPtr<IConnectionPointContainer> container;
  ComPtr<IConnectionPoint> point;
  if (SUCCEEDED(object->QueryInterface(IID_PPV_ARGS(container.GetAddressOf())))) {
    container->FindConnectionPoint(DIID___RestoreDlg, point.GetAddressOf());
  }
  if (!point) throw std::runtime_error("the object has no events");
  return point;
}

DWORD Advise(IUnknown* object, IDispatch* sink) {
  DWORD cookie = 0;
  if (FAILED(EventsOf(object)->Advise(sink, &cookie))) throw std::runtime_error("the sink was refused");
  return cookie;
}

HRESULT CallByName(IDispatch* object, const wchar_t* name, WORD flags, VARIANT* argument, VARIANT* result) {
  auto* plainName = const_cast<LPOLESTR>(name);
  DISPID member = 0;
  const HRESULT found = object->GetIDsOfNames(IID_NULL, &plainName, 1, LOCALE_USER_DEFAULT, &member);
  if (FAILED(found)) return found;
  DISPID put = DISPID_PROPERTYPUT;
  const bool isPut = (flags & DISPATCH_PROPERTYPUT) != 0;
  DISPPARAMS parameters{argument, isPut ? &put : nullptr, argument ? 1u : 0u, isPut ? 1u : 0u};
  return object->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, result, nullptr, nullptr);
}

}  // namespace kxrestore::e2e
