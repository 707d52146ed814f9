// The process is killed while it marks: what a commit has returned for is there, and the file is whole.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <random>
#include <string>
#include <thread>

#include "tests/engine/test_databases.h"
#include "tests/faults/told.h"

namespace kxrestore::faults {
namespace {

using engine::testing::MakeSqliteFile;

constexpr int kRows = 4000;

// Marks one row after the other and tells through `pipe` how many are committed.
[[noreturn]] void MarkUntilKilled(const std::string& file, int pipe) {
  const auto workspace = engine::MakeDefaultWorkspace();
  for (int id = 1; id <= kRows;) {
    workspace->BeginAction();
    for (int i = 0; i < 100 && id <= kRows; ++i, ++id) {
      workspace->OpenDatabase({.name = file})
          ->Execute("UPDATE Catalog SET Restore = True WHERE ID = " + std::to_string(id),
                    engine::kFailOnError);
      if (id % 20 != 0) continue;
      workspace->Flush();
      if (write(pipe, &id, sizeof id) != sizeof id) _exit(1);
    }
    workspace->EndAction();
  }
  _exit(0);
}

class Killed : public ::testing::TestWithParam<const char*> {};

TEST_P(Killed, KeepsWhatWasCommitted) {
  std::mt19937 random(Seed());
  for (unsigned i = 0; i < 10 * Times(); ++i) {
    const auto catalog = MakeSqliteFile();
    catalog->Run(engine::testing::CatalogSchema() + "PRAGMA journal_mode = " + GetParam() +
                 "; WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
                 std::to_string(kRows) +
                 ") INSERT INTO Catalog (ID, Filename, Restore) SELECT i, 'f' || i, 0 FROM n");
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t process = fork();
    ASSERT_GE(process, 0);
    if (process == 0) MarkUntilKilled(catalog->Request().name, ends[1]);
    close(ends[1]);
    int safe = 0;
    ASSERT_EQ(read(ends[0], &safe, sizeof safe), static_cast<ssize_t>(sizeof safe));
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 60'000));
    kill(process, SIGKILL);
    while (read(ends[0], &safe, sizeof safe) == static_cast<ssize_t>(sizeof safe)) continue;
    close(ends[0]);
    int status = 0;
    waitpid(process, &status, 0);

    // The next dialog on the file, and then another program.
    const auto workspace = engine::MakeDefaultWorkspace();
    workspace->OpenDatabase(catalog->Request());
    const int marked = std::stoi(catalog->Ask("SELECT count(*) FROM Catalog WHERE Restore = 1"));
    const int last = std::stoi(catalog->Ask("SELECT max(ID) FROM Catalog WHERE Restore = 1"));
    const bool held = marked >= safe && marked == last && catalog->Ask("PRAGMA integrity_check") == "ok";
    EXPECT_TRUE(held) << safe << " marks were safe, " << marked << " are there up to " << last;
    Tell(std::string("the process is killed, ") + GetParam(), held);
  }
}

INSTANTIATE_TEST_SUITE_P(Journals, Killed, ::testing::Values("DELETE", "WAL"),
                         [](const auto& mode) { return std::string(mode.param); });

}  // namespace
}  // namespace kxrestore::faults
