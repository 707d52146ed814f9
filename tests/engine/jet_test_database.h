// Files of the desktop engine, opened without that engine.
#pragma once

#include "bench/desktop_file.h"
#include "tests/engine/test_databases.h"

namespace kxrestore::engine::testing {

// The test's rows are kept in a SQLite file, its twin, and written from there into a copy of a sample, page
// by page. What the engine marks in the copy is taken over into the twin before that is asked or changed.
class JetTestDatabase final : public TestDatabase {
 public:
  JetTestDatabase(std::string sample, const bench::DesktopFile::Style& style);

  OpenRequest Request() const override { return {.name = m_path}; }
  void Run(std::string_view sql) override;
  std::string Ask(std::string_view sql) override;

 private:
  void TakeMarks();
  void Write();

  std::string m_sample;
  bench::DesktopFile::Style m_style;
  TemporaryFolder m_folder;
  std::string m_path = m_folder.File("catälog.mdb");
  std::unique_ptr<TestDatabase> m_twin = MakeSqliteFile();
};

}  // namespace kxrestore::engine::testing
