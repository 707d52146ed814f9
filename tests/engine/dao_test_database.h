// The kind of database that the automation back end opens, over the server of tests/dao_server.
#pragma once

#include "tests/dao_server/dao_server.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::engine::testing {

// A SQLite file with a file beside it that has the desktop engine's header.
class DaoTestDatabase final : public TestDatabase {
 public:
  explicit DaoTestDatabase(const std::vector<dao_server::Installation>& installations = {
                               {L"DAO.DBEngine.120"}});

  OpenRequest Request() const override;
  void Run(std::string_view sql) override { m_sqlite->Run(sql); }
  std::string Ask(std::string_view sql) override { return m_sqlite->Ask(sql); }

  dao_server::Journal& Journal() { return m_server.GetJournal(); }

 private:
  std::unique_ptr<TestDatabase> m_sqlite;
  dao_server::DaoServer m_server;
};

}  // namespace kxrestore::engine::testing
