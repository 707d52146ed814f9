// A restore host in C++ with the header of the package. With mingw-w64 or Visual C++:
//   g++ -municode -static -I../../include restore.cpp -o restore.exe -lole32 -loleaut32 -luuid
//   cl /EHsc /I..\..\include restore.cpp ole32.lib oleaut32.lib
// restore.exe CATALOG [DESTINATION] prints what it would restore, in its order.
#include <kxrestore.h>

#include <cstdio>
#include <string>

// Receives the event: an IDispatch with one dispatch identifier.
class Events final : public IDispatch {
 public:
  explicit Events(std::wstring catalog) : m_catalog(std::move(catalog)) {}

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    const bool known = iid == IID_IUnknown || iid == IID_IDispatch || iid == DIID___RestoreDlg;
    *object = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 1; }  // lives on the stack of wmain
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override { return *count = 0, S_OK; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }

  // No exception may leave this. The dialog is still on the screen, and the marks are in the catalog.
  STDMETHODIMP Invoke(DISPID event, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    if (event != 1) return DISP_E_MEMBERNOTFOUND;  // CommenceRestore
    std::puts("CommenceRestore");
    std::fflush(stdout);
    return _wsystem((L"kxrestore.exe list --json --catalog \"" + m_catalog + L"\"").c_str()) == 0 ? S_OK
                                                                                                  : E_FAIL;
  }

 private:
  std::wstring m_catalog;
};

int wmain(int count, wchar_t** words) {
  if (count < 2) return std::puts("usage: restore CATALOG [DESTINATION]"), 2;
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);  // on the thread of the user interface
  _RestoreDlg* dialog = nullptr;
  const HRESULT created = CoCreateInstance(CLSID_RestoreDlg, nullptr, CLSCTX_INPROC_SERVER, IID__RestoreDlg,
                                           reinterpret_cast<void**>(&dialog));
  if (FAILED(created)) {
    std::printf("KXRestore is not registered: %08lX\n", static_cast<unsigned long>(created));
    return 2;
  }

  Events events(words[1]);
  IConnectionPointContainer* container = nullptr;
  IConnectionPoint* point = nullptr;
  DWORD cookie = 0;
  dialog->QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(&container));
  container->FindConnectionPoint(DIID___RestoreDlg, &point);
  point->Advise(&events, &cookie);

  BSTR catalog = SysAllocString(words[1]), destination = SysAllocString(count > 2 ? words[2] : L"");
  short result = 0;
  dialog->put_DBType(0);  // a catalog file; 1: a server
  dialog->put_DB(&catalog);
  dialog->put_RestorePath(&destination);
  dialog->DefineRestoreSet(&result);  // modal; 1 after "Restore Now", 0 after "Cancel"
  std::printf("DefineRestoreSet = %d\n", result);

  SysFreeString(catalog);
  SysFreeString(destination);
  point->Unadvise(cookie);
  point->Release();
  container->Release();
  dialog->Release();
  CoUninitialize();
  return 0;
}
