// The kind of database that the automation back end opens: a SQLite file, a file beside it that has the
// desktop engine's header, and a stand-in for the engine over the SQLite file. While an object lives, the
// stand-in is registered for this process under the names of the real engines, and COM is initialised on the
// thread that made the object.
#pragma once

#include "engine/dao/automation.h"
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

  // Whether this machine has a real engine, whose registration must not be changed.
  static bool RealOneIsInstalled();

  OpenRequest Request() const override;
  void Run(std::string_view sql) override { m_sqlite->Run(sql); }
  std::string Ask(std::string_view sql) override { return m_sqlite->Ask(sql); }

  // A text that no row can be read with: GetRows stops before it, its field raises error 3197.
  static constexpr std::string_view kUnreadable = "unreadable";

  // State shared by all objects of the stand-in: recorded calls, and the errors of the last failed call.
  struct Journal {
    struct Entry {
      int number;
      std::string description, source;
    };
    std::vector<std::string> calls;
    std::vector<Entry> errors;
    std::string innerCause;  // of the failures to come
    int liveObjects = 0;
    bool bareErrors = false;  // failures give only their number; the list has the rest
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
