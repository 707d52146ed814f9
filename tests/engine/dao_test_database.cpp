#include "tests/engine/dao_test_database.h"

#include <algorithm>
#include <array>
#include <fstream>

#include "base/utf16.h"

namespace kxrestore::engine::testing {
namespace {

class Factory final : public dao_server::ComObject<IClassFactory> {
 public:
  Factory(std::string name, dao_server::Journal& journal, Workspace& workspace)
      : m_name(std::move(name)), m_journal(journal), m_workspace(workspace) {}

  STDMETHODIMP CreateInstance(IUnknown*, REFIID iid, void** object) override {
    m_journal.calls.push_back("made " + m_name);
    return dao_server::MakeDbEngine(m_journal, m_workspace).Raw().pdispVal->QueryInterface(iid, object);
  }
  STDMETHODIMP LockServer(BOOL) override { return S_OK; }

 private:
  const std::string m_name;
  dao_server::Journal& m_journal;
  Workspace& m_workspace;
};

}  // namespace

bool DaoTestDatabase::RealOneIsInstalled() {
  return std::ranges::any_of(std::to_array({L"DAO.DBEngine.120", L"DAO.DBEngine.36", L"DAO.DBEngine.35"}),
                             [](const wchar_t* name) {
                               CLSID identifier;
                               return SUCCEEDED(CLSIDFromProgID(name, &identifier));
                             });
}

DaoTestDatabase::DaoTestDatabase(const std::vector<Installation>& installations) {
  EXPECT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
  BYTE number = 0;
  for (const Installation& installation : installations) Register(installation, ++number);
  const std::string name = Request().name;
  std::ofstream(std::filesystem::path(std::u8string(name.begin(), name.end())), std::ios::binary)
      << std::string_view("\0\1\0\0Standard Jet DB\0", 20) << "and more";
}

void DaoTestDatabase::Register(const Installation& installation, BYTE number) {
  const CLSID identifier = {0x6b0f3a51, 0x1d27, 0x4c0e, {0x9a, 0x44, 0x5e, 0x21, 0x7c, 0x03, 0xd8, number}};
  const std::wstring& key = m_keys.emplace_back(L"Software\\Classes\\" + ToUtf16<wchar_t>(installation.name));
  wchar_t text[40];
  const int length = StringFromGUID2(identifier, text, 40);
  EXPECT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, (key + L"\\CLSID").c_str(), nullptr, REG_SZ, text,
                            static_cast<DWORD>(length * sizeof(wchar_t))),
            ERROR_SUCCESS);
  if (installation.broken) return;
  const dao_server::ComPtr<Factory> factory(new Factory(installation.name, journal, *m_workspace));
  EXPECT_EQ(CoRegisterClassObject(identifier, factory.Get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                                  &m_classes.emplace_back()),
            S_OK);
}

DaoTestDatabase::~DaoTestDatabase() {
  for (const DWORD cookie : m_classes) CoRevokeClassObject(cookie);
  for (const std::wstring& key : m_keys) RegDeleteTreeW(HKEY_LOCAL_MACHINE, key.c_str());
  CoUninitialize();
}

OpenRequest DaoTestDatabase::Request() const {
  OpenRequest request = m_sqlite->Request();
  request.name.replace(request.name.rfind('.'), std::string::npos, ".mdb");
  return request;
}

}  // namespace kxrestore::engine::testing
