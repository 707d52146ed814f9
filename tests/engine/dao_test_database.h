// A database for the automation back end: a SQLite file, an empty file with the desktop engine's header in
// the same folder, and a double of the engine, which answers from the SQLite file. During its lifetime an
// object registers the double in this process under the names of the real engines, and initialises COM on the
// thread that created it.
#pragma once

#include "engine/dao/automation.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::engine::testing {

struct Installation {
  std::string name;     // the ProgID
  bool broken = false;  // registered, but cannot be created
};

class DaoTestDatabase final : public TestDatabase {
 public:
  explicit DaoTestDatabase(const std::vector<Installation>& installations = {{"DAO.DBEngine.120"}});
  ~DaoTestDatabase() override;

  // Whether this machine has a real engine, whose registration must not be changed.
  static bool RealOneIsInstalled();

  OpenRequest Request() const override;
  void Run(std::string_view sql) override { m_sqlite->Run(sql); }
  std::string Ask(std::string_view sql) override { return m_sqlite->Ask(sql); }

  // A row with this text cannot be read: GetRows stops before it, and its field raises error 3197.
  static constexpr std::string_view kUnreadable = "unreadable";

  // The state of all objects of the double: recorded calls, and the errors of the last failed call.
  struct Journal {
    struct Entry {
      int number;
      std::string description, source;
    };
    std::vector<std::string> calls;
    std::vector<Entry> errors;
    std::string innerCause;  // of later failures
    int liveObjects = 0;
    bool bareErrors = false;  // failures have only a number, and the list Errors has the rest
  };
  Journal journal;

 private:
  void Register(const Installation& installation, BYTE number);

  std::unique_ptr<TestDatabase> m_sqlite = MakeSqliteFile();
  std::unique_ptr<Workspace> m_workspace = MakeImpatientWorkspace();
  std::vector<std::wstring> m_keys;
  std::vector<DWORD> m_classes;
};

}  // namespace kxrestore::engine::testing
