// The kind of database that the automation back end opens: a SQLite file with a file beside it that has the
// desktop engine's header, and an engine that is registered for this process under the names of the real
// ones, as long as the object lives. Initialises COM on its thread.
#pragma once

#include "tests/dao_server/object_model.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::engine::testing {

struct Installation {
  std::string name;     // of the engine, as programs ask for it
  bool broken = false;  // registered, but cannot be made
};

class DaoTestDatabase final : public TestDatabase {
 public:
  explicit DaoTestDatabase(const std::vector<Installation>& installations = {{"DAO.DBEngine.120"}});
  ~DaoTestDatabase() override;

  // Whether this machine has the real thing, which must not be tampered with.
  static bool RealOneIsInstalled();

  OpenRequest Request() const override;
  void Run(std::string_view sql) override { m_sqlite->Run(sql); }
  std::string Ask(std::string_view sql) override { return m_sqlite->Ask(sql); }

  dao_server::Journal journal;

 private:
  void Register(const Installation& installation, BYTE number);

  std::unique_ptr<TestDatabase> m_sqlite = MakeSqliteFile();
  std::unique_ptr<Workspace> m_workspace = MakeImpatientWorkspace();
  std::vector<std::wstring> m_keys;
  std::vector<DWORD> m_classes;
};

}  // namespace kxrestore::engine::testing
