#include "tests/dao_server/dao_server.h"

#include <stdexcept>

#include "base/utf16.h"

namespace kxrestore::dao_server {
namespace {

constexpr const wchar_t* kNames[] = {L"DAO.DBEngine.120", L"DAO.DBEngine.36", L"DAO.DBEngine.35"};

void Check(HRESULT result, const char* what) {
  if (FAILED(result)) throw std::runtime_error(std::string(what) + ": " + std::to_string(result));
}

class Factory final : public IClassFactory {
 public:
  Factory(std::wstring name, Journal& journal, engine::Workspace& workspace)
      : m_name(std::move(name)), m_journal(journal), m_workspace(workspace) {}

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    const bool known = iid == IID_IUnknown || iid == IID_IClassFactory;
    *object = known ? this : nullptr;
    if (!known) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --m_references;
    if (left == 0) delete this;
    return left;
  }
  STDMETHODIMP CreateInstance(IUnknown*, REFIID iid, void** object) override {
    std::string made = "made ";
    AppendUtf8(made, std::wstring_view(m_name));
    m_journal.calls.push_back(std::move(made));
    return MakeDbEngine(m_journal, m_workspace)->QueryInterface(iid, object);
  }
  STDMETHODIMP LockServer(BOOL) override { return S_OK; }

 private:
  ~Factory() = default;
  std::wstring m_name;
  Journal& m_journal;
  engine::Workspace& m_workspace;
  ULONG m_references = 0;
};

}  // namespace

bool DaoServer::RealOneIsInstalled() {
  CLSID identifier;
  for (const wchar_t* name : kNames) {
    if (SUCCEEDED(CLSIDFromProgID(name, &identifier))) return true;
  }
  return false;
}

DaoServer::DaoServer(std::unique_ptr<engine::Workspace> workspace,
                     const std::vector<Installation>& installations)
    : m_workspace(std::move(workspace)) {
  Check(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), "CoInitializeEx");
  unsigned number = 0;
  for (const Installation& installation : installations) Register(installation, ++number);
}

void DaoServer::Register(const Installation& installation, unsigned number) {
  const CLSID identifier = {
      0x6b0f3a51, 0x1d27, 0x4c0e, {0x9a, 0x44, 0x5e, 0x21, 0x7c, 0x03, 0xd8, static_cast<BYTE>(number)}};
  const std::wstring key = std::wstring(L"Software\\Classes\\") + installation.name;
  wchar_t text[40];
  const int length = StringFromGUID2(identifier, text, 40);
  Check(HRESULT_FROM_WIN32(RegSetKeyValueW(HKEY_LOCAL_MACHINE, (key + L"\\CLSID").c_str(), nullptr, REG_SZ,
                                           text, static_cast<DWORD>(length * sizeof(wchar_t)))),
        "registering");
  m_keys.push_back(key);
  if (installation.broken) return;
  const ComPtr<Factory> factory(new Factory(installation.name, m_journal, *m_workspace));
  DWORD cookie = 0;
  Check(CoRegisterClassObject(identifier, factory.Get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie),
        "CoRegisterClassObject");
  m_classes.push_back(cookie);
}

DaoServer::~DaoServer() {
  for (const DWORD cookie : m_classes) CoRevokeClassObject(cookie);
  for (const std::wstring& key : m_keys) RegDeleteTreeW(HKEY_LOCAL_MACHINE, key.c_str());
  CoUninitialize();
}

}  // namespace kxrestore::dao_server
