// A desktop engine for tests: registered for this process under the names of the real ones, as long as the
// object lives. Initialises COM on its thread.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "engine/database.h"
#include "tests/dao_server/object_model.h"

namespace kxrestore::dao_server {

struct Installation {
  const wchar_t* name;  // of the engine, as programs ask for it
  bool broken = false;  // registered, but cannot be made
};

class DaoServer {
 public:
  // `workspace` answers.
  DaoServer(std::unique_ptr<engine::Workspace> workspace,
            const std::vector<Installation>& installations = {{L"DAO.DBEngine.120"}});
  ~DaoServer();
  DaoServer(const DaoServer&) = delete;
  DaoServer& operator=(const DaoServer&) = delete;

  // Whether this machine has the real thing, which must not be tampered with.
  static bool RealOneIsInstalled();

  Journal& GetJournal() { return m_journal; }

 private:
  void Register(const Installation& installation, unsigned number);

  Journal m_journal;
  std::unique_ptr<engine::Workspace> m_workspace;
  std::vector<std::wstring> m_keys;
  std::vector<DWORD> m_classes;
};

}  // namespace kxrestore::dao_server
